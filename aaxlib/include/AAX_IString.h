// Text exchanged between host and plug-in.
#pragma once

#include <cstdint>

class AAX_IString {
public:
    virtual ~AAX_IString() = default;
    virtual uint32_t Length() const = 0;
    virtual uint32_t MaxLength() const = 0;
    virtual const char* Get() const = 0;
    virtual void Set(const char* iString) = 0;
    virtual AAX_IString& operator=(const AAX_IString& iOther) = 0;
    virtual AAX_IString& operator=(const char* iString) = 0;
};
