// Plug-in side proxy of the host's parameter automation.
#pragma once

#include "AAX_IAutomationDelegate.h"

class AAX_VAutomationDelegate : public AAX_IAutomationDelegate {
public:
    explicit AAX_VAutomationDelegate(IACFUnknown* pUnknown);
    ~AAX_VAutomationDelegate() override;
    AAX_VAutomationDelegate(const AAX_VAutomationDelegate&) = delete;
    AAX_VAutomationDelegate& operator=(const AAX_VAutomationDelegate&) = delete;

    bool IsValid() const { return mIAutomationDelegate != nullptr; }
    AAX_Result RegisterParameter(AAX_CParamID iParameterID) override;
    AAX_Result UnregisterParameter(AAX_CParamID iParameterID) override;
    AAX_Result PostSetValueRequest(AAX_CParamID iParameterID, double normalizedValue) const override;
    AAX_Result PostCurrentValue(AAX_CParamID iParameterID, double normalizedValue) const override;
    AAX_Result PostTouchRequest(AAX_CParamID iParameterID) override;
    AAX_Result PostReleaseRequest(AAX_CParamID iParameterID) override;
    AAX_Result GetTouchState(AAX_CParamID iParameterID, AAX_CBoolean* outTouched) override;

private:
    AAX_IACFAutomationDelegate* mIAutomationDelegate = nullptr;
};
