// Silence on every output channel of a context record (main pair and stems),
// for a fake host that holds processing off. Real-time safe.
#pragma once

#include <cstring>

#include "S_Alg_Context.h"

inline void SilenceAllOutputs(const S_Alg_Context& context)
{
    const int32_t frames = context.mBufferLength != nullptr ? *context.mBufferLength : 0;
    if (context.mOutputs == nullptr || frames <= 0)
        return;
    for (int c = 0; c < 2 + 2 * kNumOutputStems; ++c)
        if (context.mOutputs[c] != nullptr)
            std::memset(context.mOutputs[c], 0, sizeof(float) * static_cast<size_t>(frames));
}
