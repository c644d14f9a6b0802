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

}  // namespace AAXHost
