#include "AAX_VAutomationDelegate.h"

AAX_VAutomationDelegate::AAX_VAutomationDelegate(IACFUnknown* pUnknown)
{
    void* p = nullptr;
    if (pUnknown != nullptr && pUnknown->QueryInterface(IID_IAAXAutomationDelegateV1, &p) == ACF_OK) mIAutomationDelegate = static_cast<AAX_IACFAutomationDelegate*>(p);
}

AAX_VAutomationDelegate::~AAX_VAutomationDelegate()
{
    if (mIAutomationDelegate != nullptr) mIAutomationDelegate->Release();
}

AAX_Result AAX_VAutomationDelegate::RegisterParameter(AAX_CParamID iParameterID)
{
    if (mIAutomationDelegate == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIAutomationDelegate->RegisterParameter(iParameterID);
}

AAX_Result AAX_VAutomationDelegate::UnregisterParameter(AAX_CParamID iParameterID)
{
    if (mIAutomationDelegate == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIAutomationDelegate->UnregisterParameter(iParameterID);
}

AAX_Result AAX_VAutomationDelegate::PostSetValueRequest(AAX_CParamID iParameterID, double normalizedValue) const
{
    if (mIAutomationDelegate == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIAutomationDelegate->PostSetValueRequest(iParameterID, normalizedValue);
}

AAX_Result AAX_VAutomationDelegate::PostCurrentValue(AAX_CParamID iParameterID, double normalizedValue) const
{
    if (mIAutomationDelegate == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIAutomationDelegate->PostCurrentValue(iParameterID, normalizedValue);
}

AAX_Result AAX_VAutomationDelegate::PostTouchRequest(AAX_CParamID iParameterID)
{
    if (mIAutomationDelegate == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIAutomationDelegate->PostTouchRequest(iParameterID);
}

AAX_Result AAX_VAutomationDelegate::PostReleaseRequest(AAX_CParamID iParameterID)
{
    if (mIAutomationDelegate == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIAutomationDelegate->PostReleaseRequest(iParameterID);
}

AAX_Result AAX_VAutomationDelegate::GetTouchState(AAX_CParamID iParameterID, AAX_CBoolean* outTouched)
{
    if (mIAutomationDelegate == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIAutomationDelegate->GetTouchState(iParameterID, outTouched);
}
