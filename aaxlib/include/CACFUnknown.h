// Base of every ACF object the plug-in hands to the host: reference counting,
// aggregation and the base interface query. Derived classes add their own
// interfaces by overriding InternalQueryInterface and use
// ACF_DECLARE_STANDARD_UNKNOWN() to get the forwarding IACFUnknown methods.
#pragma once

#include <atomic>
#include <cstdint>

#include "ACFBase.h"

class CACFUnknown {
public:
    // The non-delegating unknown: what an outer object (or the host, when the
    // object is not aggregated) holds to manage the inner object's lifetime.
    class PrivateUnknown : public IACFUnknown {
    public:
        explicit PrivateUnknown(CACFUnknown* owner) : mOwner(owner) {}
        ACFRESULT QueryInterface(const acfIID& iid, void** ppOut) override;
        acfUInt32 AddRef() override;
        acfUInt32 Release() override;

    private:
        CACFUnknown* mOwner;
    };

    CACFUnknown();
    // A non-null outer makes this object part of an aggregate: it then shares
    // the outer object's identity and reference count.
    explicit CACFUnknown(IACFUnknown* pUnkOuter);
    CACFUnknown(const CACFUnknown&) = delete;
    CACFUnknown& operator=(const CACFUnknown&) = delete;

    virtual ACFRESULT InternalQueryInterface(const acfIID& riid, void** ppvObjOut);
    acfUInt32 InternalAddRef();
    acfUInt32 InternalRelease();

    IACFUnknown* GetOuterUnknown() const { return mOuterUnknown; }
    IACFUnknown* GetPrivateUnknown() { return &mPrivateUnknown; }
    int32_t GetReferenceCount() const { return mReferenceCount.load(); }

    static int32_t GetActiveObjectCount();
    static void IncrementActiveObjects();
    static void DecrementActiveObjects();

protected:
    virtual ~CACFUnknown();
    // Called when the last reference goes; frees the object.
    virtual void ReclaimMemory();

private:
    std::atomic<int32_t> mReferenceCount{0};
    PrivateUnknown mPrivateUnknown;
    IACFUnknown* mOuterUnknown;

    static std::atomic<int32_t> m_ActiveObjects;
};

// Declares QueryInterface/AddRef/Release forwarding to the controlling
// unknown, for a class deriving from an ACF interface and CACFUnknown.
#define ACF_DECLARE_STANDARD_UNKNOWN()                                               \
    ACFRESULT QueryInterface(const acfIID& iid, void** ppOut) override               \
    {                                                                                \
        return CACFUnknown::GetOuterUnknown()->QueryInterface(iid, ppOut);           \
    }                                                                                \
    acfUInt32 AddRef() override { return CACFUnknown::GetOuterUnknown()->AddRef(); } \
    acfUInt32 Release() override { return CACFUnknown::GetOuterUnknown()->Release(); }
