// MIDI events placed on a sample timeline, and the block plan that cuts a
// render into buffers. Shared by the host and by anything that must feed a
// plug-in exactly the same events at the same offsets.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "AAX.h"

namespace AAXHost {

struct SMidiEvent {
    int64_t sample = 0;
    uint32_t length = 0;
    uint8_t data[4] = {0, 0, 0, 0};
};

class CMidiSchedule {
public:
    // Reads the channel messages of a Standard MIDI File. With tempoBPM > 0
    // events are placed by their ticks at that tempo; otherwise the file's
    // own tempo map places them. fileTempo receives the file's first tempo
    // (120 when it has none).
    bool LoadSmf(const std::string& path, double sampleRate, double tempoBPM, std::string& error,
                 double* fileTempo = nullptr);

    // Adds one event; keeps the list in time order (stable for equal times).
    void Add(const SMidiEvent& e);
    const std::vector<SMidiEvent>& Events() const { return mEvents; }
    int64_t LastSample() const { return mEvents.empty() ? 0 : mEvents.back().sample; }

    // Events in [start, start + frames), in order; first is the index of the
    // first of them.
    void EventsInBlock(int64_t start, int32_t frames, size_t& first, size_t& count) const;
    // The same as AAX packets whose time stamps are offsets in the block.
    void PacketsForBlock(int64_t start, int32_t frames, std::vector<AAX_CMidiPacket>& out) const;

private:
    std::vector<SMidiEvent> mEvents;
};

struct SBlock {
    int64_t start;
    int32_t frames;
};

// Buffers of blockSize samples covering totalSamples; the last may be shorter.
std::vector<SBlock> PlanBlocks(int64_t totalSamples, int32_t blockSize);

// Length in bytes of a channel message with this status byte, 0 when it is
// not a channel message.
uint32_t ChannelMessageLength(uint8_t status);

}  // namespace AAXHost
