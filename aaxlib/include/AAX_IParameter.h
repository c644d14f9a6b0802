// One parameter of the plug-in's data model, as the effect and the host see it.
#pragma once

#include <cstdint>

#include "AAX.h"
#include "AAX_CString.h"
#include "AAX_IDisplayDelegate.h"
#include "AAX_ITaperDelegate.h"

class AAX_IAutomationDelegate;

class AAX_IParameter {
public:
    virtual ~AAX_IParameter() = default;

    virtual AAX_CParamID Identifier() const = 0;
    virtual void SetName(const AAX_CString& name) = 0;
    virtual const AAX_CString& Name() const = 0;
    virtual void AddShortenedName(const AAX_CString& name) = 0;
    virtual const AAX_CString& ShortenedName(int32_t iNumCharacters) const = 0;
    virtual void ClearShortenedNames() = 0;
    virtual bool Automatable() const = 0;

    virtual void SetAutomationDelegate(AAX_IAutomationDelegate* iAutomationDelegate) = 0;
    virtual void Touch() = 0;
    virtual void Release() = 0;

    virtual void SetNormalizedValue(double newNormalizedValue) = 0;
    virtual double GetNormalizedValue() const = 0;
    virtual void SetNormalizedDefaultValue(double normalizedDefault) = 0;
    virtual double GetNormalizedDefaultValue() const = 0;
    virtual void SetToDefaultValue() = 0;

    virtual void SetNumberOfSteps(uint32_t numSteps) = 0;
    virtual uint32_t GetNumberOfSteps() const = 0;
    virtual uint32_t GetStepValue() const = 0;
    virtual double GetNormalizedValueFromStep(uint32_t iStep) const = 0;
    virtual uint32_t GetStepValueFromNormalizedValue(double normalizedValue) const = 0;
    virtual void SetStepValue(uint32_t iStep) = 0;

    virtual bool GetValueString(AAX_CString* valueString) const = 0;
    virtual bool GetValueString(int32_t iMaxNumChars, AAX_CString* valueString) const = 0;
    virtual bool GetNormalizedValueFromString(const AAX_CString& valueString, double* normValue) const = 0;
    virtual bool GetStringFromNormalizedValue(double normalizedValue, AAX_CString& valueString) const = 0;
    virtual bool GetStringFromNormalizedValue(double normalizedValue, int32_t iMaxNumChars, AAX_CString& valueString) const = 0;
    virtual bool SetValueFromString(const AAX_CString& newValueString) = 0;

    // Typed access: only the accessor matching the parameter's value type succeeds.
    virtual bool GetValueAsBool(bool* value) const = 0;
    virtual bool GetValueAsInt32(int32_t* value) const = 0;
    virtual bool GetValueAsFloat(float* value) const = 0;
    virtual bool GetValueAsDouble(double* value) const = 0;
    virtual bool GetValueAsString(AAX_IString* value) const = 0;
    virtual bool SetValueWithBool(bool value) = 0;
    virtual bool SetValueWithInt32(int32_t value) = 0;
    virtual bool SetValueWithFloat(float value) = 0;
    virtual bool SetValueWithDouble(double value) = 0;
    virtual bool SetValueWithString(const AAX_IString& value) = 0;

    virtual void SetType(AAX_EParameterType iControlType) = 0;
    virtual AAX_EParameterType GetType() const = 0;
    virtual void SetOrientation(AAX_EParameterOrientation iOrientation) = 0;
    virtual AAX_EParameterOrientation GetOrientation() const = 0;

    // The delegate is cloned; one of the wrong value type is ignored.
    virtual void SetTaperDelegate(AAX_ITaperDelegateBase& iTaperDelegate, bool iPreserveValue = true) = 0;
    virtual void SetDisplayDelegate(AAX_IDisplayDelegateBase& iDisplayDelegate) = 0;

    // The host's value (set-value answer, automation, chunk restore) taking effect.
    virtual void UpdateNormalizedValue(double newNormalizedValue) = 0;
};
