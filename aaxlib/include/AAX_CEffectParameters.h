// Base of a plug-in's data model: parameters, packets to the algorithm, the
// library's own parameter chunk ('elck') and the host proxies of one instance.
// A derived class adds its parameters in EffectInit and is created by a
// static factory whose result the host receives as AAX_IEffectParameters*.
#pragma once

#include <cstdint>
#include <memory>
#include <set>
#include <string>

#include "AAX.h"
#include "AAX_CChunkDataParser.h"
#include "AAX_CPacketDispatcher.h"
#include "AAX_CParameterManager.h"
#include "AAX_IEffectParameters.h"
#include "CACFUnknown.h"

class AAX_IAutomationDelegate;
class AAX_IController;
class AAX_ITransport;
class AAX_VAutomationDelegate;
class AAX_VController;
class AAX_VTransport;

// The library's parameter chunk and its fixed name.
constexpr AAX_CTypeID cDefaultChunkID = 0x656C636B;  // 'elck'
constexpr const char* cDefaultChunkName = "Complete Controls State";
constexpr const char* cDefaultMasterBypassID = "MasterBypassID";
constexpr const char* cPreviewID = "PreviewID";

// AAX_IEffectParameters must stay the first base: the factory's pointer is
// handed to the host as that interface.
class AAX_CEffectParameters : public AAX_IEffectParameters, public CACFUnknown {
public:
    ACF_DECLARE_STANDARD_UNKNOWN()

    AAX_CEffectParameters();
    AAX_CEffectParameters(const AAX_CEffectParameters&) = delete;
    AAX_CEffectParameters& operator=(const AAX_CEffectParameters&) = delete;

    ACFRESULT InternalQueryInterface(const acfIID& riid, void** ppvObjOut) override;

    // Initialisation and notifications
    AAX_Result Initialize(IACFUnknown* iController) override;
    AAX_Result Uninitialize() override;
    AAX_Result NotificationReceived(AAX_CTypeID inNotificationType, const void* inNotificationData, uint32_t inNotificationDataSize) override;

    // Parameters
    AAX_Result GetNumberOfParameters(int32_t* oNumControls) const override;
    AAX_Result GetMasterBypassParameter(AAX_IString* oIDString) const override;
    AAX_Result GetParameterIsAutomatable(AAX_CParamID iParameterID, AAX_CBoolean* oAutomatable) const override;
    AAX_Result GetParameterNumberOfSteps(AAX_CParamID iParameterID, int32_t* oNumSteps) const override;
    AAX_Result GetParameterName(AAX_CParamID iParameterID, AAX_IString* oName) const override;
    AAX_Result GetParameterNameOfLength(AAX_CParamID iParameterID, AAX_IString* oName, int32_t iNameLength) const override;
    AAX_Result GetParameterDefaultNormalizedValue(AAX_CParamID iParameterID, double* oValue) const override;
    AAX_Result SetParameterDefaultNormalizedValue(AAX_CParamID iParameterID, double iValue) override;
    AAX_Result GetParameterType(AAX_CParamID iParameterID, AAX_EParameterType* oParameterType) const override;
    AAX_Result GetParameterOrientation(AAX_CParamID iParameterID, AAX_EParameterOrientation* oParameterOrientation) const override;
    AAX_Result GetParameter(AAX_CParamID iParameterID, AAX_IParameter** oParameter) override;
    AAX_Result GetParameterIndex(AAX_CParamID iParameterID, int32_t* oControlIndex) const override;
    AAX_Result GetParameterIDFromIndex(int32_t iControlIndex, AAX_IString* oParameterIDString) const override;
    AAX_Result GetParameterValueFromString(AAX_CParamID iParameterID, double* oValue, const AAX_IString& iValueString) const override;
    AAX_Result GetParameterStringFromValue(AAX_CParamID iParameterID, double iValue, AAX_IString* oValueString, int32_t iMaxLength) const override;
    AAX_Result GetParameterValueString(AAX_CParamID iParameterID, AAX_IString* oValueString, int32_t iMaxLength) const override;
    AAX_Result GetParameterNormalizedValue(AAX_CParamID iParameterID, double* oValuePtr) const override;
    AAX_Result SetParameterNormalizedValue(AAX_CParamID iParameterID, double iValue) override;
    AAX_Result TouchParameter(AAX_CParamID iParameterID) override;
    AAX_Result ReleaseParameter(AAX_CParamID iParameterID) override;
    AAX_Result UpdateParameterNormalizedValue(AAX_CParamID iParameterID, double iValue, AAX_EUpdateSource iSource) override;
    virtual AAX_Result SetTaperDelegate(AAX_CParamID iParameterID, AAX_ITaperDelegateBase& iTaperDelegate, bool iPreserveValue);
    virtual AAX_Result SetDisplayDelegate(AAX_CParamID iParameterID, AAX_IDisplayDelegateBase& iDisplayDelegate);

    // Real-time side
    AAX_Result GenerateCoefficients() override;
    AAX_Result ResetFieldData(AAX_CFieldIndex inFieldIndex, void* oData, uint32_t inDataSize) const override;

    // Chunks
    AAX_Result GetNumberOfChunks(int32_t* oNumChunks) const override;
    AAX_Result GetChunkIDFromIndex(int32_t iIndex, AAX_CTypeID* oChunkID) const override;
    AAX_Result GetChunkSize(AAX_CTypeID iChunkID, uint32_t* oSize) const override;
    AAX_Result GetChunk(AAX_CTypeID iChunkID, AAX_SPlugInChunk* oChunk) const override;
    AAX_Result SetChunk(AAX_CTypeID iChunkID, const AAX_SPlugInChunk* iChunk) override;
    AAX_Result CompareActiveChunk(const AAX_SPlugInChunk* iChunkP, AAX_CBoolean* oIsEqual) const override;
    AAX_Result GetNumberOfChanges(int32_t* oNumChanges) const override;

    AAX_Result TimerWakeup() override;
    AAX_Result GetCustomData(AAX_CTypeID iDataBlockID, uint32_t inDataSize, void* oData,
                             uint32_t* oDataWritten) const override;

    // Host objects of this instance; null before Initialize or when the host
    // did not answer that interface.
    AAX_IController* Controller();
    const AAX_IController* Controller() const;
    AAX_ITransport* Transport();
    const AAX_ITransport* Transport() const;
    AAX_IAutomationDelegate* AutomationDelegate();
    const AAX_IAutomationDelegate* AutomationDelegate() const;

protected:
    ~AAX_CEffectParameters() override;

    // Where the derived class adds its parameters and registers its packets.
    virtual AAX_Result EffectInit() { return AAX_SUCCESS; }
    // Fills mChunkParser with every saved parameter's value.
    void BuildChunkData() const;
    // Identifiers never written into nor restored from the 'elck' chunk.
    void FilterParameterIDOnSave(AAX_CParamID controlID);
    bool IsParameterFilteredOnSave(AAX_CParamID controlID) const;

    int32_t mNumPlugInChanges = 0;
    mutable int32_t mChunkSize = 0;
    mutable AAX_CChunkDataParser mChunkParser;
    int32_t mNumChunkedParameters = 0;
    AAX_CPacketDispatcher mPacketDispatcher;
    AAX_CParameterManager mParameterManager;
    std::set<std::string> mFilteredParameters;

private:
    std::unique_ptr<AAX_VController> mController;
    std::unique_ptr<AAX_VTransport> mTransport;
    std::unique_ptr<AAX_VAutomationDelegate> mAutomationDelegate;
};
