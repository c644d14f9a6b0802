// Host services: assertion and trace reporting.
#pragma once

#include "ACFBase.h"
#include "AAX.h"

inline constexpr acfIID IID_IAAXHostServicesV1 = {0x4D72766E, 0x0205, 0x4141, {0x58, 0x48, 0x53, 0x76, 0x63, 0x73, 0x56, 0x31}};

class AAX_IACFHostServices : public IACFUnknown {
public:
    virtual AAX_Result HandleAssertFailure(const char* iFile, int32_t iLine, const char* iNote) const = 0;
    virtual AAX_Result Trace(int32_t iPriority, const char* iMessage) const = 0;

protected:
    ~AAX_IACFHostServices() = default;
};

class AAX_IHostServices {
public:
    virtual ~AAX_IHostServices() = default;
    virtual AAX_Result HandleAssertFailure(const char* iFile, int32_t iLine, const char* iNote) const = 0;
    virtual AAX_Result Trace(int32_t iPriority, const char* iMessage) const = 0;
};
