#include "AAX_VViewContainer.h"

AAX_VViewContainer::AAX_VViewContainer(IACFUnknown* pUnknown)
{
    void* p = nullptr;
    if (pUnknown != nullptr && pUnknown->QueryInterface(IID_IAAXViewContainerV1, &p) == ACF_OK) mIViewContainer = static_cast<AAX_IACFViewContainer*>(p);
}

AAX_VViewContainer::~AAX_VViewContainer()
{
    if (mIViewContainer != nullptr) mIViewContainer->Release();
}

int32_t AAX_VViewContainer::GetType()
{
    if (mIViewContainer == nullptr) return static_cast<int32_t>(AAX_eViewContainer_Type_NULL);
    return mIViewContainer->GetType();
}

void* AAX_VViewContainer::GetPtr()
{
    if (mIViewContainer == nullptr) return nullptr;
    return mIViewContainer->GetPtr();
}

AAX_Result AAX_VViewContainer::GetModifiers(uint32_t* outModifiers)
{
    if (mIViewContainer == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIViewContainer->GetModifiers(outModifiers);
}

AAX_Result AAX_VViewContainer::SetViewSize(AAX_Point& inSize)
{
    if (mIViewContainer == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIViewContainer->SetViewSize(inSize);
}
