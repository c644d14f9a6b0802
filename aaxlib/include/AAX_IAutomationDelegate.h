// The automation family: how a plug-in asks the host to touch, change and
// release its parameters, and reports values the host should record.
#pragma once

#include "ACFBase.h"
#include "AAX.h"

inline constexpr acfIID IID_IAAXAutomationDelegateV1 = {0x4D72766E, 0x0202, 0x4141, {0x58, 0x41, 0x75, 0x74, 0x6F, 0x6D, 0x56, 0x31}};

class AAX_IACFAutomationDelegate : public IACFUnknown {
public:
    virtual AAX_Result RegisterParameter(AAX_CParamID iParameterID) = 0;
    virtual AAX_Result UnregisterParameter(AAX_CParamID iParameterID) = 0;
    // Asks the host to set a value; the host answers through the effect's
    // UpdateParameterNormalizedValue.
    virtual AAX_Result PostSetValueRequest(AAX_CParamID iParameterID, double normalizedValue) const = 0;
    // Reports a value that has taken effect.
    virtual AAX_Result PostCurrentValue(AAX_CParamID iParameterID, double normalizedValue) const = 0;
    virtual AAX_Result PostTouchRequest(AAX_CParamID iParameterID) = 0;
    virtual AAX_Result PostReleaseRequest(AAX_CParamID iParameterID) = 0;
    virtual AAX_Result GetTouchState(AAX_CParamID iParameterID, AAX_CBoolean* outTouched) = 0;

protected:
    ~AAX_IACFAutomationDelegate() = default;
};

class AAX_IAutomationDelegate {
public:
    virtual ~AAX_IAutomationDelegate() = default;
    virtual AAX_Result RegisterParameter(AAX_CParamID iParameterID) = 0;
    virtual AAX_Result UnregisterParameter(AAX_CParamID iParameterID) = 0;
    virtual AAX_Result PostSetValueRequest(AAX_CParamID iParameterID, double normalizedValue) const = 0;
    virtual AAX_Result PostCurrentValue(AAX_CParamID iParameterID, double normalizedValue) const = 0;
    virtual AAX_Result PostTouchRequest(AAX_CParamID iParameterID) = 0;
    virtual AAX_Result PostReleaseRequest(AAX_CParamID iParameterID) = 0;
    virtual AAX_Result GetTouchState(AAX_CParamID iParameterID, AAX_CBoolean* outTouched) = 0;
};
