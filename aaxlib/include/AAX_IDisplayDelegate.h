// Display delegates turn a parameter's real value into text and back.
#pragma once

#include <cstdint>

#include "AAX_CString.h"

class AAX_IDisplayDelegateBase {
public:
    virtual ~AAX_IDisplayDelegateBase() = default;
};

template <typename T>
class AAX_IDisplayDelegate : public AAX_IDisplayDelegateBase {
public:
    virtual AAX_IDisplayDelegate* Clone() const = 0;
    virtual bool ValueToString(T value, AAX_CString* valueString) const = 0;
    virtual bool ValueToString(T value, int32_t maxNumChars, AAX_CString* valueString) const = 0;
    virtual bool StringToValue(const AAX_CString& valueString, T* value) const = 0;
};
