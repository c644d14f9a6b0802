// STANDARD: a parameter shown as the wrapped plug-in shows it. The value is
// the normalised one (the AAX parameter's taper is 0..1); where the plug-in
// has no text for a value, the number is shown as before.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "AAX_CNumberDisplayDelegate.h"
#include "AAX_IDisplayDelegate.h"
#include "fakehost/IFakeHost.h"

class CPluginTextDisplay : public AAX_IDisplayDelegate<float> {
public:
    // The host outlives every parameter that asks it (the wrapper drops
    // its fake host only when it is destroyed).
    CPluginTextDisplay(IFakeHost& host, int index) : mHost(&host), mIndex(index) {}

    CPluginTextDisplay* Clone() const override { return new CPluginTextDisplay(*this); }

    bool ValueToString(float value, AAX_CString* valueString) const override
    {
        return ValueToString(value, -1, valueString);
    }
    bool ValueToString(float value, int32_t maxNumChars, AAX_CString* valueString) const override
    {
        if (valueString == nullptr)
            return false;
        const std::optional<std::string> text = mHost->GetParameterText(mIndex, static_cast<double>(value));
        if (!text)
            return maxNumChars < 0 ? mNumber.ValueToString(value, valueString)
                                   : mNumber.ValueToString(value, maxNumChars, valueString);
        valueString->Set(Fitted(*text, maxNumChars).c_str());
        return true;
    }
    bool StringToValue(const AAX_CString& valueString, float* value) const override
    {
        if (value == nullptr)
            return false;
        const std::optional<double> read = mHost->GetParameterValueFromText(mIndex, valueString.Get());
        if (!read)
            return false;
        *value = static_cast<float>(*read);
        return true;
    }

    // Cut to at most maxChars bytes, never inside a UTF-8 character.
    static std::string Fitted(const std::string& text, int32_t maxChars)
    {
        if (maxChars < 0 || text.size() <= static_cast<size_t>(maxChars))
            return text;
        size_t end = static_cast<size_t>(maxChars);
        while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
            --end;
        return text.substr(0, end);
    }

private:
    IFakeHost* mHost;
    int mIndex;
    AAX_CNumberDisplayDelegate<float, 2, 0> mNumber;
};
