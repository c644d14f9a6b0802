// Shows a value as a decimal number with Precision digits after the point,
// followed by SpaceAfter blanks (room for a unit appended by the caller).
#pragma once

#include <cstdint>

#include "AAX_IDisplayDelegate.h"

template <typename T, uint32_t Precision = 2, uint32_t SpaceAfter = 0>
class AAX_CNumberDisplayDelegate : public AAX_IDisplayDelegate<T> {
public:
    AAX_CNumberDisplayDelegate* Clone() const override { return new AAX_CNumberDisplayDelegate(*this); }

    bool ValueToString(T value, AAX_CString* valueString) const override
    {
        if (valueString == nullptr) return false;
        valueString->Clear();
        valueString->AppendNumber(static_cast<double>(value), static_cast<int32_t>(Precision));
        AppendSpaces(valueString);
        return true;
    }
    bool ValueToString(T value, int32_t maxNumChars, AAX_CString* valueString) const override
    {
        if (valueString == nullptr) return false;
        // Give up decimals first, then cut what still does not fit.
        for (int32_t precision = static_cast<int32_t>(Precision); precision >= 0; --precision) {
            valueString->Clear();
            valueString->AppendNumber(static_cast<double>(value), precision);
            if (maxNumChars < 0 || valueString->Length() <= static_cast<uint32_t>(maxNumChars)) return true;
        }
        const uint32_t limit = maxNumChars < 0 ? 0u : static_cast<uint32_t>(maxNumChars);
        if (valueString->Length() > limit) valueString->Erase(limit, valueString->Length() - limit);
        return true;
    }
    bool StringToValue(const AAX_CString& valueString, T* value) const override
    {
        if (value == nullptr) return false;
        double parsed = 0.0;
        if (!valueString.ToDouble(&parsed)) {
            *value = 0;
            return false;
        }
        *value = static_cast<T>(parsed);
        return true;
    }

private:
    static void AppendSpaces(AAX_CString* valueString)
    {
        for (uint32_t i = 0; i < SpaceAfter; ++i) valueString->Append(" ");
    }
};
