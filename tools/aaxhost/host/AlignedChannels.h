// Channel buffers as audio hosts hand them out: every channel starts on a
// 64-byte boundary, so that a plug-in's vector code takes the same path
// whatever the block size and wherever the allocator put the storage.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace AAXHost {

constexpr size_t kChannelAlignmentFloats = 16;  // 64 bytes

// Sizes storage for `channels` channels of `frames` samples (zeroed) and
// returns their start addresses.
inline std::vector<float*> AlignedChannels(std::vector<float>& storage, size_t channels, size_t frames)
{
    const size_t stride = (frames + kChannelAlignmentFloats - 1) / kChannelAlignmentFloats * kChannelAlignmentFloats;
    storage.assign(stride * channels + kChannelAlignmentFloats, 0.0f);
    const auto address = reinterpret_cast<uintptr_t>(storage.data());
    const size_t skip = (64 - address % 64) % 64 / sizeof(float);
    std::vector<float*> pointers;
    for (size_t ch = 0; ch < channels; ++ch)
        pointers.push_back(storage.data() + skip + stride * ch);
    return pointers;
}

}  // namespace AAXHost
