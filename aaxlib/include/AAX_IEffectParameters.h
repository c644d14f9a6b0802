// The data-model family: the plug-in's effect parameters object, created by
// the factory registered with kAAX_ProcPtrID_Create_EffectParameters and
// driven by the host.
#pragma once

#include "ACFBase.h"
#include "AAX.h"
#include "AAX_IString.h"

class AAX_IParameter;

inline constexpr acfIID IID_IAAXEffectParametersV1 = {0x4D72766E, 0x0301, 0x4141, {0x58, 0x45, 0x66, 0x50, 0x72, 0x6D, 0x56, 0x31}};

class AAX_IACFEffectParameters : public IACFUnknown {
public:
    // iController is the host's controller object of this instance; the
    // plug-in queries it for the controller, automation and transport.
    virtual AAX_Result Initialize(IACFUnknown* iController) = 0;
    virtual AAX_Result Uninitialize() = 0;
    virtual AAX_Result NotificationReceived(AAX_CTypeID inNotificationType, const void* inNotificationData, uint32_t inNotificationDataSize) = 0;

    virtual AAX_Result GetNumberOfParameters(int32_t* oNumControls) const = 0;
    virtual AAX_Result GetMasterBypassParameter(AAX_IString* oIDString) const = 0;
    virtual AAX_Result GetParameterIsAutomatable(AAX_CParamID iParameterID, AAX_CBoolean* oAutomatable) const = 0;
    virtual AAX_Result GetParameterNumberOfSteps(AAX_CParamID iParameterID, int32_t* oNumSteps) const = 0;
    virtual AAX_Result GetParameterName(AAX_CParamID iParameterID, AAX_IString* oName) const = 0;
    virtual AAX_Result GetParameterNameOfLength(AAX_CParamID iParameterID, AAX_IString* oName, int32_t iNameLength) const = 0;
    virtual AAX_Result GetParameterDefaultNormalizedValue(AAX_CParamID iParameterID, double* oValue) const = 0;
    virtual AAX_Result SetParameterDefaultNormalizedValue(AAX_CParamID iParameterID, double iValue) = 0;
    virtual AAX_Result GetParameterType(AAX_CParamID iParameterID, AAX_EParameterType* oParameterType) const = 0;
    virtual AAX_Result GetParameterOrientation(AAX_CParamID iParameterID, AAX_EParameterOrientation* oParameterOrientation) const = 0;
    virtual AAX_Result GetParameterIndex(AAX_CParamID iParameterID, int32_t* oControlIndex) const = 0;
    virtual AAX_Result GetParameterIDFromIndex(int32_t iControlIndex, AAX_IString* oParameterIDString) const = 0;
    virtual AAX_Result GetParameterValueFromString(AAX_CParamID iParameterID, double* oValue, const AAX_IString& iValueString) const = 0;
    virtual AAX_Result GetParameterStringFromValue(AAX_CParamID iParameterID, double iValue, AAX_IString* oValueString, int32_t iMaxLength) const = 0;
    virtual AAX_Result GetParameterValueString(AAX_CParamID iParameterID, AAX_IString* oValueString, int32_t iMaxLength) const = 0;
    virtual AAX_Result GetParameterNormalizedValue(AAX_CParamID iParameterID, double* oValuePtr) const = 0;
    virtual AAX_Result SetParameterNormalizedValue(AAX_CParamID iParameterID, double iValue) = 0;
    virtual AAX_Result TouchParameter(AAX_CParamID iParameterID) = 0;
    virtual AAX_Result ReleaseParameter(AAX_CParamID iParameterID) = 0;
    // The host's answer to a set-value request, and its automation playback.
    virtual AAX_Result UpdateParameterNormalizedValue(AAX_CParamID iParameterID, double iValue, AAX_EUpdateSource iSource) = 0;

    virtual AAX_Result GenerateCoefficients() = 0;
    virtual AAX_Result ResetFieldData(AAX_CFieldIndex inFieldIndex, void* oData, uint32_t inDataSize) const = 0;

    virtual AAX_Result GetNumberOfChunks(int32_t* oNumChunks) const = 0;
    virtual AAX_Result GetChunkIDFromIndex(int32_t iIndex, AAX_CTypeID* oChunkID) const = 0;
    virtual AAX_Result GetChunkSize(AAX_CTypeID iChunkID, uint32_t* oSize) const = 0;
    virtual AAX_Result GetChunk(AAX_CTypeID iChunkID, AAX_SPlugInChunk* oChunk) const = 0;
    virtual AAX_Result SetChunk(AAX_CTypeID iChunkID, const AAX_SPlugInChunk* iChunk) = 0;
    virtual AAX_Result CompareActiveChunk(const AAX_SPlugInChunk* iChunkP, AAX_CBoolean* oIsEqual) const = 0;
    virtual AAX_Result GetNumberOfChanges(int32_t* oNumChanges) const = 0;

    virtual AAX_Result TimerWakeup() = 0;

    // A block of data the plug-in publishes under an ID of its own choosing;
    // an unknown ID writes nothing (*oDataWritten = 0). Placed last so that
    // every earlier slot keeps its place.
    virtual AAX_Result GetCustomData(AAX_CTypeID iDataBlockID, uint32_t inDataSize, void* oData,
                                     uint32_t* oDataWritten) const = 0;

protected:
    ~AAX_IACFEffectParameters() = default;
};

// What plug-in code sees: the same object, plus access to its parameters.
class AAX_IEffectParameters : public AAX_IACFEffectParameters {
public:
    virtual AAX_Result GetParameter(AAX_CParamID iParameterID, AAX_IParameter** oParameter) = 0;

protected:
    ~AAX_IEffectParameters() = default;
};

// Signature of the factory registered with kAAX_ProcPtrID_Create_EffectParameters.
typedef AAX_IEffectParameters* (*AAX_CreateEffectParametersProc)();
