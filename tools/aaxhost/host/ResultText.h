// Readable text for AAX and ACF result codes in error messages.
#pragma once

#include <cstdint>
#include <string>

namespace AAXHost {

// "-20001 (AAX_ERROR_INVALID_PARAMETER_ID)", or the bare number when unknown.
std::string ResultText(int32_t result);

}  // namespace AAXHost
