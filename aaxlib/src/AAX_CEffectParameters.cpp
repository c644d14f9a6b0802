#include "AAX_CEffectParameters.h"

#include <cstring>

#include "AAX_CString.h"
#include "AAX_IParameter.h"
#include "AAX_VAutomationDelegate.h"
#include "AAX_VController.h"
#include "AAX_VTransport.h"

AAX_CEffectParameters::AAX_CEffectParameters() = default;

AAX_CEffectParameters::~AAX_CEffectParameters()
{
    // Parameters and packets refer to the proxies: drop them first.
    mPacketDispatcher.Initialize(nullptr, nullptr);
    mParameterManager.RemoveAllParameters();
}

ACFRESULT AAX_CEffectParameters::InternalQueryInterface(const acfIID& riid, void** ppvObjOut)
{
    if (ppvObjOut == nullptr) return ACF_E_POINTER;
    if (riid == IID_IAAXEffectParametersV1) {
        *ppvObjOut = static_cast<AAX_IACFEffectParameters*>(this);
        AddRef();
        return ACF_OK;
    }
    return CACFUnknown::InternalQueryInterface(riid, ppvObjOut);
}

AAX_Result AAX_CEffectParameters::Initialize(IACFUnknown* iController)
{
    mController.reset(new AAX_VController(iController));
    mAutomationDelegate.reset(new AAX_VAutomationDelegate(iController));
    mTransport.reset(new AAX_VTransport(iController));

    mParameterManager.Initialize(AutomationDelegate());
    mPacketDispatcher.Initialize(Controller(), this);

    const AAX_Result result = EffectInit();
    if (result != AAX_SUCCESS) return result;

    AAX_CString bypassID;
    GetMasterBypassParameter(&bypassID);
    if (!bypassID.Empty()) FilterParameterIDOnSave(bypassID.Get());

    int32_t numParameters = 0;
    if (GetNumberOfParameters(&numParameters) == AAX_SUCCESS && numParameters > 0)
        mNumChunkedParameters = numParameters - static_cast<int32_t>(mFilteredParameters.size());
    return result;
}

AAX_Result AAX_CEffectParameters::Uninitialize()
{
    mPacketDispatcher.Initialize(nullptr, nullptr);
    mPacketDispatcher.RemoveAllPackets();
    mParameterManager.RemoveAllParameters();
    mParameterManager.Initialize(nullptr);
    mAutomationDelegate.reset();
    mTransport.reset();
    mController.reset();
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::NotificationReceived(AAX_CTypeID inNotificationType, const void* inNotificationData,
                                                       uint32_t inNotificationDataSize)
{
    if (inNotificationType != AAX_eNotificationEvent_ASPreviewState) return AAX_SUCCESS;
    AAX_IParameter* preview = mParameterManager.GetParameterByID(cPreviewID);
    if (preview == nullptr) return AAX_SUCCESS;
    // A payload too short for its word cannot be read; treat it as "off".
    int32_t word = 0;
    if (inNotificationData != nullptr && inNotificationDataSize >= sizeof(word))
        std::memcpy(&word, inNotificationData, sizeof(word));
    preview->SetValueWithBool(word != 0);
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetNumberOfParameters(int32_t* oNumControls) const
{
    if (oNumControls == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    *oNumControls = mParameterManager.NumParameters();
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetMasterBypassParameter(AAX_IString* oIDString) const
{
    if (oIDString == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    oIDString->Set(mParameterManager.GetParameterByID(cDefaultMasterBypassID) != nullptr ? cDefaultMasterBypassID : "");
    return AAX_SUCCESS;
}

// Every per-parameter query: unknown identifiers answer -20001.
#define AAXLIB_LOOKUP_OR_FAIL(param, id)                                              \
    auto* param = mParameterManager.GetParameterByID(id);                             \
    if (param == nullptr) return AAX_ERROR_INVALID_PARAMETER_ID

AAX_Result AAX_CEffectParameters::GetParameterIsAutomatable(AAX_CParamID iParameterID, AAX_CBoolean* oAutomatable) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    if (oAutomatable != nullptr) *oAutomatable = param->Automatable() ? 1 : 0;
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameterNumberOfSteps(AAX_CParamID iParameterID, int32_t* oNumSteps) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    if (oNumSteps != nullptr) *oNumSteps = static_cast<int32_t>(param->GetNumberOfSteps());
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameterName(AAX_CParamID iParameterID, AAX_IString* oName) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    if (oName != nullptr) oName->Set(param->Name().Get());
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameterNameOfLength(AAX_CParamID iParameterID, AAX_IString* oName,
                                                           int32_t iNameLength) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    if (oName != nullptr) oName->Set(param->ShortenedName(iNameLength).Get());
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameterDefaultNormalizedValue(AAX_CParamID iParameterID, double* oValue) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    if (oValue != nullptr) *oValue = param->GetNormalizedDefaultValue();
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::SetParameterDefaultNormalizedValue(AAX_CParamID iParameterID, double iValue)
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    param->SetNormalizedDefaultValue(iValue);
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameterType(AAX_CParamID iParameterID, AAX_EParameterType* oParameterType) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    if (oParameterType != nullptr) *oParameterType = param->GetType();
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameterOrientation(AAX_CParamID iParameterID,
                                                          AAX_EParameterOrientation* oParameterOrientation) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    if (oParameterOrientation != nullptr) *oParameterOrientation = param->GetOrientation();
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameter(AAX_CParamID iParameterID, AAX_IParameter** oParameter)
{
    if (oParameter == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    *oParameter = mParameterManager.GetParameterByID(iParameterID);
    return *oParameter != nullptr ? AAX_SUCCESS : AAX_ERROR_INVALID_PARAMETER_ID;
}

AAX_Result AAX_CEffectParameters::GetParameterIndex(AAX_CParamID iParameterID, int32_t* oControlIndex) const
{
    if (oControlIndex == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    *oControlIndex = mParameterManager.ControlIndexFromID(iParameterID);
    return *oControlIndex >= 0 ? AAX_SUCCESS : AAX_ERROR_INVALID_PARAMETER_ID;
}

AAX_Result AAX_CEffectParameters::GetParameterIDFromIndex(int32_t iControlIndex, AAX_IString* oParameterIDString) const
{
    const AAX_IParameter* param = mParameterManager.GetParameter(iControlIndex);
    if (param == nullptr) return AAX_ERROR_INVALID_PARAMETER_ID;  // same answer as every lookup
    if (oParameterIDString != nullptr) oParameterIDString->Set(param->Identifier());
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameterValueFromString(AAX_CParamID iParameterID, double* oValue,
                                                              const AAX_IString& iValueString) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    if (!param->GetNormalizedValueFromString(AAX_CString(iValueString), oValue))
        return AAX_ERROR_INVALID_STRING_CONVERSION;
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameterStringFromValue(AAX_CParamID iParameterID, double iValue,
                                                              AAX_IString* oValueString, int32_t iMaxLength) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    AAX_CString text;
    if (!param->GetStringFromNormalizedValue(iValue, iMaxLength, text)) return AAX_ERROR_INVALID_STRING_CONVERSION;
    if (oValueString != nullptr) oValueString->Set(text.Get());
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameterValueString(AAX_CParamID iParameterID, AAX_IString* oValueString,
                                                          int32_t iMaxLength) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    AAX_CString text;
    if (!param->GetValueString(iMaxLength, &text)) return AAX_ERROR_INVALID_STRING_CONVERSION;
    if (oValueString != nullptr) oValueString->Set(text.Get());
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetParameterNormalizedValue(AAX_CParamID iParameterID, double* oValuePtr) const
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    if (oValuePtr != nullptr) *oValuePtr = param->GetNormalizedValue();
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::SetParameterNormalizedValue(AAX_CParamID iParameterID, double iValue)
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    param->SetNormalizedValue(iValue);
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::TouchParameter(AAX_CParamID iParameterID)
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    param->Touch();
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::ReleaseParameter(AAX_CParamID iParameterID)
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    param->Release();
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::UpdateParameterNormalizedValue(AAX_CParamID iParameterID, double iValue,
                                                                 AAX_EUpdateSource /*iSource*/)
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    const AAX_Result result = mPacketDispatcher.UpdateParameter(*param, iParameterID, iValue);
    ++mNumPlugInChanges;
    return result;
}

AAX_Result AAX_CEffectParameters::SetTaperDelegate(AAX_CParamID iParameterID, AAX_ITaperDelegateBase& iTaperDelegate,
                                                   bool iPreserveValue)
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    param->SetTaperDelegate(iTaperDelegate, iPreserveValue);
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::SetDisplayDelegate(AAX_CParamID iParameterID, AAX_IDisplayDelegateBase& iDisplayDelegate)
{
    AAXLIB_LOOKUP_OR_FAIL(param, iParameterID);
    param->SetDisplayDelegate(iDisplayDelegate);
    return AAX_SUCCESS;
}

#undef AAXLIB_LOOKUP_OR_FAIL

AAX_Result AAX_CEffectParameters::GenerateCoefficients() { return mPacketDispatcher.Dispatch(); }

AAX_Result AAX_CEffectParameters::ResetFieldData(AAX_CFieldIndex /*inFieldIndex*/, void* oData, uint32_t inDataSize) const
{
    if (oData != nullptr && inDataSize > 0) std::memset(oData, 0, inDataSize);
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::GetNumberOfChanges(int32_t* oNumChanges) const
{
    if (oNumChanges == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    *oNumChanges = mNumPlugInChanges;
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectParameters::TimerWakeup() { return AAX_SUCCESS; }

AAX_Result AAX_CEffectParameters::GetCustomData(AAX_CTypeID, uint32_t, void*, uint32_t* oDataWritten) const
{
    if (oDataWritten == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    *oDataWritten = 0;
    return AAX_SUCCESS;
}

AAX_IController* AAX_CEffectParameters::Controller()
{
    return mController && mController->IsValid() ? mController.get() : nullptr;
}
const AAX_IController* AAX_CEffectParameters::Controller() const
{
    return const_cast<AAX_CEffectParameters*>(this)->Controller();
}
AAX_ITransport* AAX_CEffectParameters::Transport()
{
    return mTransport && mTransport->IsValid() ? mTransport.get() : nullptr;
}
const AAX_ITransport* AAX_CEffectParameters::Transport() const
{
    return const_cast<AAX_CEffectParameters*>(this)->Transport();
}
AAX_IAutomationDelegate* AAX_CEffectParameters::AutomationDelegate()
{
    return mAutomationDelegate && mAutomationDelegate->IsValid() ? mAutomationDelegate.get() : nullptr;
}
const AAX_IAutomationDelegate* AAX_CEffectParameters::AutomationDelegate() const
{
    return const_cast<AAX_CEffectParameters*>(this)->AutomationDelegate();
}

void AAX_CEffectParameters::FilterParameterIDOnSave(AAX_CParamID controlID)
{
    if (controlID != nullptr) mFilteredParameters.insert(controlID);
}

bool AAX_CEffectParameters::IsParameterFilteredOnSave(AAX_CParamID controlID) const
{
    return controlID != nullptr && mFilteredParameters.count(controlID) != 0;
}
