#include "CACFUnknown.h"

std::atomic<int32_t> CACFUnknown::m_ActiveObjects{0};

ACFRESULT CACFUnknown::PrivateUnknown::QueryInterface(const acfIID& iid, void** ppOut)
{
    return mOwner->InternalQueryInterface(iid, ppOut);
}

acfUInt32 CACFUnknown::PrivateUnknown::AddRef() { return mOwner->InternalAddRef(); }

acfUInt32 CACFUnknown::PrivateUnknown::Release() { return mOwner->InternalRelease(); }

CACFUnknown::CACFUnknown() : mPrivateUnknown(this), mOuterUnknown(&mPrivateUnknown) { IncrementActiveObjects(); }

CACFUnknown::CACFUnknown(IACFUnknown* pUnkOuter)
    : mPrivateUnknown(this), mOuterUnknown(pUnkOuter != nullptr ? pUnkOuter : &mPrivateUnknown)
{
    IncrementActiveObjects();
}

CACFUnknown::~CACFUnknown() { DecrementActiveObjects(); }

ACFRESULT CACFUnknown::InternalQueryInterface(const acfIID& riid, void** ppvObjOut)
{
    if (ppvObjOut == nullptr) return ACF_E_POINTER;
    *ppvObjOut = nullptr;
    if (riid == IID_IACFUnknown) {
        mPrivateUnknown.AddRef();
        *ppvObjOut = static_cast<IACFUnknown*>(&mPrivateUnknown);
        return ACF_OK;
    }
    return ACF_E_NOINTERFACE;
}

acfUInt32 CACFUnknown::InternalAddRef() { return static_cast<acfUInt32>(++mReferenceCount); }

acfUInt32 CACFUnknown::InternalRelease()
{
    const int32_t count = --mReferenceCount;
    if (count == 0) ReclaimMemory();
    return static_cast<acfUInt32>(count);
}

void CACFUnknown::ReclaimMemory() { delete this; }

int32_t CACFUnknown::GetActiveObjectCount() { return m_ActiveObjects.load(); }

void CACFUnknown::IncrementActiveObjects() { ++m_ActiveObjects; }

void CACFUnknown::DecrementActiveObjects() { --m_ActiveObjects; }
