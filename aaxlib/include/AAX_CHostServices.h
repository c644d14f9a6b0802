// Process-wide access to the host's services, set at start-up and cleared at
// shut-down. Without a host the calls do nothing and answer AAX_ERROR_NULL_OBJECT.
#pragma once

#include <cstdint>

#include "AAX.h"
#include "ACFBase.h"

class AAX_CHostServices {
public:
    static void Set(IACFUnknown* pUnkHost);
    static AAX_Result HandleAssertFailure(const char* iFile, int32_t iLine, const char* iNote);
    // printf-style; the text is cut at 1024 bytes.
    static AAX_Result Trace(int32_t iPriority, const char* iMessage, ...)
#if defined(__GNUC__)
        __attribute__((format(printf, 2, 3)))
#endif
        ;
    static bool IsSet();
};
