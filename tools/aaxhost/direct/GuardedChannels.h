// Channel buffers with a guard zone after each channel, filled with a
// pattern no plug-in writes by chance: a plug-in that writes past the
// samples it was given is caught here, where in a host its neighbour's
// buffer or the heap would take the damage unseen.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <vector>

#include "AlignedChannels.h"

namespace AAXDirect {

class CGuardedChannels {
public:
    static constexpr size_t kGuardFloats = 64;

    // Zeroed channels of `frames` samples each, 64-byte aligned, each
    // followed by its guard zone.
    std::vector<float*> Make(size_t channels, size_t frames)
    {
        mFrames = frames;
        mPointers = AAXHost::AlignedChannels(mStorage, channels, frames + kGuardFloats);
        for (float* channel : mPointers)
            for (size_t i = 0; i < kGuardFloats; ++i)
                std::memcpy(channel + frames + i, &kPattern, sizeof kPattern);
        return mPointers;
    }

    // The first channel whose guard zone was written, or -1. No allocation.
    int FirstOverrun() const
    {
        for (size_t c = 0; c < mPointers.size(); ++c)
            for (size_t i = 0; i < kGuardFloats; ++i) {
                uint32_t word;
                std::memcpy(&word, mPointers[c] + mFrames + i, sizeof word);
                if (word != kPattern)
                    return static_cast<int>(c);
            }
        return -1;
    }

private:
    static constexpr uint32_t kPattern = 0x7FC0DEADu;  // a quiet NaN with a payload
    std::vector<float> mStorage;
    std::vector<float*> mPointers;
    size_t mFrames = 0;
};

}  // namespace AAXDirect
