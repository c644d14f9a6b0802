// Arbitrary bytes as a Standard MIDI File: parsed, then placed on a sample
// timeline through the tempo map, as a render does.
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "SmfReader.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    // Copied to a buffer of exactly the input's size, so that any read past
    // it is caught.
    std::vector<uint8_t> bytes(data, data + size);
    AAXHost::SSmfFile file;
    std::string error;
    if (!AAXHost::ParseSmf(bytes.data(), bytes.size(), file, error))
        return 0;
    double last = 0.0;
    for (const auto& event : file.events) {
        const double seconds = AAXHost::SmfTickSeconds(file, event.tick);
        if (!std::isfinite(seconds) || seconds < 0.0 || seconds + 1e-9 < last)
            __builtin_trap();  // the timeline must run forwards
        last = seconds;
    }
    return 0;
}
