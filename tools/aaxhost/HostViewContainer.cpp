#include "HostViewContainer.h"

namespace AAXHost {

ACFRESULT CHostViewContainer::QueryInterface(const acfIID& iid, void** out)
{
    if (!out)
        return ACF_E_POINTER;
    *out = nullptr;
    if (iid == IID_IACFUnknown || iid == IID_IAAXViewContainerV1)
        return AnswerInterface<AAX_IACFViewContainer>(this, out);
    return ACF_E_NOINTERFACE;
}

acfUInt32 CHostViewContainer::Release()
{
    const acfUInt32 left = mRefs.Remove();
    if (left == 0)
        delete this;
    return left;
}

AAX_Result CHostViewContainer::GetModifiers(uint32_t* modifiers)
{
    if (!modifiers)
        return AAX_ERROR_NULL_ARGUMENT;
    *modifiers = 0;
    return AAX_SUCCESS;
}

AAX_Result CHostViewContainer::SetViewSize(AAX_Point& size)
{
    mRequests.push_back(size);
    return AAX_SUCCESS;
}

}  // namespace AAXHost
