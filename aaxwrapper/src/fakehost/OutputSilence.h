// Silence on every output channel of a block (main pair and stems), for a
// fake host that holds processing off. Real-time safe.
#pragma once

#include <cstring>

#include "fakehost/ProcessBlock.h"

inline void SilenceAllOutputs(const CProcessBlock& block)
{
    const int32_t frames = block.Frames();
    float* const* outputs = block.Outputs();
    if (outputs == nullptr || frames <= 0)
        return;
    for (int c = 0; c < kBlockOutputChannels; ++c)
        if (outputs[c] != nullptr)
            std::memset(outputs[c], 0, sizeof(float) * static_cast<size_t>(frames));
}
