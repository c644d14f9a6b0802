// The standard parameter: a value of type T shown through a taper and a
// display delegate, reported to the host's automation when one is attached.
#pragma once

#include <cmath>
#include <cstring>
#include <iterator>
#include <map>
#include <memory>
#include <type_traits>

#include "AAX_CString.h"
#include "AAX_IAutomationDelegate.h"
#include "AAX_IParameter.h"

namespace AAX_ParameterValueAccess {
// Each typed accessor succeeds only for its own type; these overloads pick it.
template <typename T, typename U>
inline bool Get(const T& value, U* out)
{
    if constexpr (std::is_same<T, U>::value) {
        if (out == nullptr) return false;
        *out = value;
        return true;
    } else {
        (void)value;
        (void)out;
        return false;
    }
}
template <typename T>
inline bool GetString(const T& value, AAX_IString* out)
{
    if constexpr (std::is_same<T, AAX_CString>::value) {
        if (out == nullptr) return false;
        out->Set(value.Get());
        return true;
    } else {
        (void)value;
        (void)out;
        return false;
    }
}
}  // namespace AAX_ParameterValueAccess

template <typename T>
class AAX_CParameter : public AAX_IParameter {
public:
    static constexpr size_t kMaxIdentifierLength = 31;

    AAX_CParameter(AAX_CParamID identifier, const AAX_CString& name, T defaultValue,
                   const AAX_ITaperDelegate<T>& taperDelegate, const AAX_IDisplayDelegate<T>& displayDelegate,
                   bool automatable = false)
        : mName(name),
          mAutomatable(automatable),
          mTaperDelegate(taperDelegate.Clone()),
          mDisplayDelegate(displayDelegate.Clone()),
          mValue(defaultValue),
          mDefaultValue(defaultValue)
    {
        InitIdentifier(identifier);
        if (mNumSteps == 0) mNumSteps = (mType == AAX_eParameterType_Continuous) ? 128u : 2u;
        SetToDefaultValue();
    }
    AAX_CParameter(const AAX_CParameter&) = delete;
    AAX_CParameter& operator=(const AAX_CParameter&) = delete;
    ~AAX_CParameter() override = default;

    AAX_CParamID Identifier() const override { return mIdentifier; }
    void SetName(const AAX_CString& name) override { mName = name; }
    const AAX_CString& Name() const override { return mName; }
    void AddShortenedName(const AAX_CString& name) override { mShortenedNames[name.Length()] = name; }
    const AAX_CString& ShortenedName(int32_t iNumCharacters) const override
    {
        // The full name when it fits, else the longest shortened name that
        // fits, else the shortest one we have.
        if (iNumCharacters < 0 || mName.Length() <= static_cast<uint32_t>(iNumCharacters) || mShortenedNames.empty())
            return mName;
        auto it = mShortenedNames.upper_bound(static_cast<uint32_t>(iNumCharacters));
        if (it == mShortenedNames.begin()) return it->second;
        return std::prev(it)->second;
    }
    void ClearShortenedNames() override { mShortenedNames.clear(); }
    bool Automatable() const override { return mAutomatable; }

    void SetAutomationDelegate(AAX_IAutomationDelegate* iAutomationDelegate) override
    {
        if (mAutomationDelegate != nullptr) mAutomationDelegate->UnregisterParameter(mIdentifier);
        mAutomationDelegate = iAutomationDelegate;
        if (mAutomationDelegate != nullptr) mAutomationDelegate->RegisterParameter(mIdentifier);
    }
    void Touch() override
    {
        if (mAutomationDelegate != nullptr) mAutomationDelegate->PostTouchRequest(mIdentifier);
    }
    void Release() override
    {
        if (mAutomationDelegate != nullptr) mAutomationDelegate->PostReleaseRequest(mIdentifier);
    }

    void SetNormalizedValue(double newNormalizedValue) override
    {
        // A NaN or an infinity (from a corrupt chunk, say) is no value.
        if (!std::isfinite(newNormalizedValue)) return;
        const double request = mTaperDelegate->RealToNormalized(mTaperDelegate->NormalizedToReal(newNormalizedValue));
        if (mAutomationDelegate != nullptr) {
            // The value changes only when the host answers the request.
            Touch();
            mAutomationDelegate->PostSetValueRequest(mIdentifier, request);
            Release();
        } else {
            mNeedNotify = true;
            UpdateNormalizedValue(request);
        }
    }
    double GetNormalizedValue() const override { return mTaperDelegate->RealToNormalized(mValue); }
    void SetNormalizedDefaultValue(double normalizedDefault) override
    {
        mDefaultValue = mTaperDelegate->NormalizedToReal(normalizedDefault);
    }
    double GetNormalizedDefaultValue() const override { return mTaperDelegate->RealToNormalized(mDefaultValue); }
    void SetToDefaultValue() override { SetNormalizedValue(mTaperDelegate->RealToNormalized(mDefaultValue)); }

    void SetNumberOfSteps(uint32_t numSteps) override { mNumSteps = numSteps; }
    uint32_t GetNumberOfSteps() const override { return mNumSteps; }
    uint32_t GetStepValue() const override { return GetStepValueFromNormalizedValue(GetNormalizedValue()); }
    double GetNormalizedValueFromStep(uint32_t iStep) const override
    {
        if (mNumSteps < 2) return 0.0;
        const uint32_t step = iStep < mNumSteps ? iStep : mNumSteps - 1;
        return static_cast<double>(step) / static_cast<double>(mNumSteps - 1);
    }
    uint32_t GetStepValueFromNormalizedValue(double normalizedValue) const override
    {
        if (mNumSteps < 2 || !(normalizedValue > 0.0)) return 0;
        if (normalizedValue >= 1.0) return mNumSteps - 1;
        return static_cast<uint32_t>(std::floor(normalizedValue * static_cast<double>(mNumSteps - 1) + 0.5));
    }
    void SetStepValue(uint32_t iStep) override { SetNormalizedValue(GetNormalizedValueFromStep(iStep)); }

    bool GetValueString(AAX_CString* valueString) const override
    {
        return valueString != nullptr && mDisplayDelegate->ValueToString(mValue, valueString);
    }
    bool GetValueString(int32_t iMaxNumChars, AAX_CString* valueString) const override
    {
        return valueString != nullptr && mDisplayDelegate->ValueToString(mValue, iMaxNumChars, valueString);
    }
    bool GetNormalizedValueFromString(const AAX_CString& valueString, double* normValue) const override
    {
        T value{};
        if (normValue == nullptr || !mDisplayDelegate->StringToValue(valueString, &value)) return false;
        *normValue = mTaperDelegate->RealToNormalized(value);
        return true;
    }
    bool GetStringFromNormalizedValue(double normalizedValue, AAX_CString& valueString) const override
    {
        return mDisplayDelegate->ValueToString(mTaperDelegate->NormalizedToReal(normalizedValue), &valueString);
    }
    bool GetStringFromNormalizedValue(double normalizedValue, int32_t iMaxNumChars, AAX_CString& valueString) const override
    {
        return mDisplayDelegate->ValueToString(mTaperDelegate->NormalizedToReal(normalizedValue), iMaxNumChars, &valueString);
    }
    bool SetValueFromString(const AAX_CString& newValueString) override
    {
        T value{};
        if (!mDisplayDelegate->StringToValue(newValueString, &value)) return false;
        SetValue(value);
        return true;
    }

    bool GetValueAsBool(bool* value) const override { return AAX_ParameterValueAccess::Get(mValue, value); }
    bool GetValueAsInt32(int32_t* value) const override { return AAX_ParameterValueAccess::Get(mValue, value); }
    bool GetValueAsFloat(float* value) const override { return AAX_ParameterValueAccess::Get(mValue, value); }
    bool GetValueAsDouble(double* value) const override { return AAX_ParameterValueAccess::Get(mValue, value); }
    bool GetValueAsString(AAX_IString* value) const override { return AAX_ParameterValueAccess::GetString(mValue, value); }
    bool SetValueWithBool(bool value) override { return SetTyped(value); }
    bool SetValueWithInt32(int32_t value) override { return SetTyped(value); }
    bool SetValueWithFloat(float value) override { return SetTyped(value); }
    bool SetValueWithDouble(double value) override { return SetTyped(value); }
    bool SetValueWithString(const AAX_IString& value) override
    {
        if constexpr (std::is_same<T, AAX_CString>::value) {
            SetValue(AAX_CString(value));
            return true;
        } else {
            (void)value;
            return false;
        }
    }

    void SetType(AAX_EParameterType iControlType) override { mType = iControlType; }
    AAX_EParameterType GetType() const override { return mType; }
    void SetOrientation(AAX_EParameterOrientation iOrientation) override { mOrientation = iOrientation; }
    AAX_EParameterOrientation GetOrientation() const override { return mOrientation; }

    void SetTaperDelegate(AAX_ITaperDelegateBase& iTaperDelegate, bool iPreserveValue = true) override
    {
        auto* typed = dynamic_cast<AAX_ITaperDelegate<T>*>(&iTaperDelegate);
        if (typed == nullptr) return;
        const double normalized = GetNormalizedValue();
        mTaperDelegate.reset(typed->Clone());
        mNeedNotify = true;
        if (iPreserveValue)
            UpdateNormalizedValue(mTaperDelegate->RealToNormalized(mValue));
        else
            UpdateNormalizedValue(normalized);
    }
    void SetDisplayDelegate(AAX_IDisplayDelegateBase& iDisplayDelegate) override
    {
        auto* typed = dynamic_cast<AAX_IDisplayDelegate<T>*>(&iDisplayDelegate);
        if (typed != nullptr) mDisplayDelegate.reset(typed->Clone());
    }

    void UpdateNormalizedValue(double newNormalizedValue) override
    {
        if (!std::isfinite(newNormalizedValue)) return;
        const T newValue = mTaperDelegate->NormalizedToReal(newNormalizedValue);
        if (!mNeedNotify && newValue == mValue) return;
        mValue = newValue;
        if (mAutomationDelegate != nullptr) mAutomationDelegate->PostCurrentValue(mIdentifier, newNormalizedValue);
        mNeedNotify = false;
    }

    // Typed convenience for plug-in code.
    void SetValue(T newValue) { SetNormalizedValue(mTaperDelegate->RealToNormalized(newValue)); }
    T GetValue() const { return mValue; }
    void SetDefaultValue(T newDefaultValue) { mDefaultValue = mTaperDelegate->ConstrainRealValue(newDefaultValue); }
    T GetDefaultValue() const { return mDefaultValue; }
    const AAX_ITaperDelegate<T>* TaperDelegate() const { return mTaperDelegate.get(); }
    const AAX_IDisplayDelegate<T>* DisplayDelegate() const { return mDisplayDelegate.get(); }
    bool NeedNotify() const { return mNeedNotify; }

private:
    void InitIdentifier(AAX_CParamID identifier)
    {
        std::memset(mIdentifier, 0, sizeof(mIdentifier));
        if (identifier == nullptr) return;
        size_t n = 0;
        while (n < kMaxIdentifierLength && identifier[n] != '\0') ++n;
        std::memcpy(mIdentifier, identifier, n);
    }
    template <typename U>
    bool SetTyped(U value)
    {
        if constexpr (std::is_same<T, U>::value) {
            SetValue(value);
            return true;
        } else {
            (void)value;
            return false;
        }
    }

    char mIdentifier[kMaxIdentifierLength + 1];
    AAX_CString mName;
    std::map<uint32_t, AAX_CString> mShortenedNames;
    bool mAutomatable;
    uint32_t mNumSteps = 0;
    AAX_EParameterType mType = AAX_eParameterType_Continuous;
    AAX_EParameterOrientation mOrientation = AAX_eParameterOrientation_Default;
    std::unique_ptr<AAX_ITaperDelegate<T>> mTaperDelegate;
    std::unique_ptr<AAX_IDisplayDelegate<T>> mDisplayDelegate;
    AAX_IAutomationDelegate* mAutomationDelegate = nullptr;
    bool mNeedNotify = true;
    T mValue;
    T mDefaultValue;
};
