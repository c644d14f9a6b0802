// Shows a switch with two fixed texts; parsing accepts exactly those texts.
#pragma once

#include "AAX_IDisplayDelegate.h"

template <typename T>
class AAX_CBinaryDisplayDelegate : public AAX_IDisplayDelegate<T> {
public:
    AAX_CBinaryDisplayDelegate(const char* falseString, const char* trueString)
        : mFalseString(falseString), mTrueString(trueString)
    {
    }

    AAX_CBinaryDisplayDelegate* Clone() const override { return new AAX_CBinaryDisplayDelegate(*this); }
    bool ValueToString(T value, AAX_CString* valueString) const override
    {
        if (valueString == nullptr) return false;
        *valueString = value ? mTrueString : mFalseString;
        return true;
    }
    bool ValueToString(T value, int32_t maxNumChars, AAX_CString* valueString) const override
    {
        if (!ValueToString(value, valueString)) return false;
        if (maxNumChars >= 0 && valueString->Length() > static_cast<uint32_t>(maxNumChars))
            valueString->Erase(static_cast<uint32_t>(maxNumChars), valueString->Length() - static_cast<uint32_t>(maxNumChars));
        return true;
    }
    bool StringToValue(const AAX_CString& valueString, T* value) const override
    {
        if (value == nullptr) return false;
        if (valueString == mTrueString) {
            *value = static_cast<T>(true);
            return true;
        }
        *value = static_cast<T>(false);
        return valueString == mFalseString;
    }

private:
    AAX_CString mFalseString;
    AAX_CString mTrueString;
};
