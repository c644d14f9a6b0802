// Reference counting shared by the host-side ACF objects. Every object is
// created with one reference held by its creator and deletes itself when the
// last reference goes.
#pragma once

#include <atomic>
#include <cstdint>

#include "ACFBase.h"

namespace AAXHost {

class CRefCount {
public:
    acfUInt32 Add() { return ++mCount; }
    // Returns the remaining count; the caller deletes itself at zero.
    acfUInt32 Remove() { return --mCount; }
    acfUInt32 Count() const { return mCount; }

private:
    std::atomic<acfUInt32> mCount{1};
};

// Answers QueryInterface for one of an object's interfaces, with the AddRef a
// caller of QueryInterface owns.
template <class TInterface, class TObject>
ACFRESULT AnswerInterface(TObject* self, void** out)
{
    *out = static_cast<TInterface*>(self);
    self->AddRef();
    return ACF_OK;
}

// The IACFUnknown part of every host object: the QueryInterface checks,
// the reference count and the deletion at the last Release. A subclass only
// says which interfaces it answers.
template <class... TInterfaces>
class CHostUnknown : public TInterfaces... {
public:
    ACFRESULT QueryInterface(const acfIID& iid, void** out) override
    {
        if (!out)
            return ACF_E_POINTER;
        *out = nullptr;
        return AnswerQuery(iid, out);
    }
    acfUInt32 AddRef() override { return mRefs.Add(); }
    acfUInt32 Release() override
    {
        const acfUInt32 left = mRefs.Remove();
        if (left == 0)
            delete this;
        return left;
    }
    acfUInt32 RefCount() const { return mRefs.Count(); }

protected:
    CHostUnknown() = default;
    // Virtual so that Release destroys the whole object.
    virtual ~CHostUnknown() = default;
    // Answers iid through AnswerInterface, or ACF_E_NOINTERFACE; out is
    // valid and already cleared.
    virtual ACFRESULT AnswerQuery(const acfIID& iid, void** out) = 0;

private:
    CRefCount mRefs;
};

}  // namespace AAXHost
