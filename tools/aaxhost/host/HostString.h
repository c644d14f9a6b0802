// A text the host hands to the plug-in to fill (parameter names, IDs).
#pragma once

#include <string>

#include "AAX_IString.h"

namespace AAXHost {

class CHostString final : public AAX_IString {
public:
    uint32_t Length() const override { return static_cast<uint32_t>(mText.size()); }
    uint32_t MaxLength() const override { return 4096; }
    const char* Get() const override { return mText.c_str(); }
    void Set(const char* s) override { mText = s ? s : ""; }
    AAX_IString& operator=(const AAX_IString& other) override
    {
        Set(other.Get());
        return *this;
    }
    AAX_IString& operator=(const char* s) override
    {
        Set(s);
        return *this;
    }
    const std::string& Text() const { return mText; }

private:
    std::string mText;
};

}  // namespace AAXHost
