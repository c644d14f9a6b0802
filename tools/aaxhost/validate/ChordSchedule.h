// The MIDI the validator plays, bundle and direct host alike: a chord struck
// every 300 ms and released half-way.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "AAX.h"

namespace AAXHost {

// Replaces `packets` with the chord events inside [position, position +
// frames), time-stamped within the buffer. Never grows `packets` past its
// reserved capacity (the audio thread allocates nothing).
inline void ChordPacketsForBlock(std::vector<AAX_CMidiPacket>& packets, int64_t position, int32_t frames,
                                 double sampleRate)
{
    static constexpr unsigned char kChord[] = {48, 60, 64, 67};
    packets.clear();
    const int64_t period = std::max<int64_t>(2, static_cast<int64_t>(0.3 * sampleRate));
    for (int64_t s = position; s < position + frames; ++s) {
        const int64_t phase = s % period;
        if (phase != 0 && phase != period / 2)
            continue;
        const unsigned char status = phase == 0 ? 0x90 : 0x80;
        for (unsigned char note : kChord) {
            if (packets.size() == packets.capacity())
                return;
            AAX_CMidiPacket p{};
            p.mTimestamp = static_cast<uint32_t>(s - position);
            p.mLength = 3;
            p.mData[0] = status;
            p.mData[1] = note;
            p.mData[2] = status == 0x90 ? 100 : 0;
            packets.push_back(p);
        }
    }
}

}  // namespace AAXHost
