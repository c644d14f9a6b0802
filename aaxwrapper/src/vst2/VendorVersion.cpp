#include "vst2/VendorVersion.h"

namespace Morvane {

std::string FormatVendorVersion(int32_t version)
{
    // Negative answers are read as their bit pattern, like any other.
    uint32_t remaining = static_cast<uint32_t>(version);
    if (remaining == 0)
        return std::string();
    unsigned bytes[4];
    int count = 0;
    while (remaining != 0) {
        bytes[count++] = remaining & 0xFFu;
        remaining >>= 8;
    }
    std::string text = "V";
    for (int i = count - 1; i >= 0; --i) {
        text += std::to_string(bytes[i]);
        if (i > 0)
            text += '.';
    }
    return text;
}

}  // namespace Morvane
