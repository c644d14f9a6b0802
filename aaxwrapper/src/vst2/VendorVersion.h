// Text form of a VST 2 vendor version number.
#pragma once

#include <cstdint>
#include <string>

namespace Morvane {

// "" for 0; otherwise "V" and the value's bytes in decimal, most significant
// first, without the leading zero bytes: 0x01020304 -> "V1.2.3.4".
std::string FormatVendorVersion(int32_t version);

}  // namespace Morvane
