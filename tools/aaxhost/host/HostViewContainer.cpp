#include "HostViewContainer.h"

namespace AAXHost {

ACFRESULT CHostViewContainer::AnswerQuery(const acfIID& iid, void** out)
{
    if (iid == IID_IACFUnknown || iid == IID_IAAXViewContainerV1)
        return AnswerInterface<AAX_IACFViewContainer>(this, out);
    return ACF_E_NOINTERFACE;
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
