#include "MidiSchedule.h"

#include <algorithm>
#include <cmath>

#include "RegularFile.h"
#include "SmfReader.h"

namespace AAXHost {

namespace {
constexpr size_t kMaxMidiFileBytes = 64 * 1024 * 1024;
constexpr double kMaxEventSeconds = 86400.0;
}  // namespace

uint32_t ChannelMessageLength(uint8_t status)
{
    switch (status & 0xF0) {
    case 0x80: case 0x90: case 0xA0: case 0xB0: case 0xE0: return 3;
    case 0xC0: case 0xD0: return 2;
    default: return 0;
    }
}

bool CMidiSchedule::LoadSmf(const std::string& path, double sampleRate, double tempoBPM, std::string& error,
                            double* fileTempo)
{
    std::string bytes;
    if (!Morvane::ReadRegularFile(path, kMaxMidiFileBytes, bytes, error)) {
        error = "cannot read the MIDI file: " + error;
        return false;
    }
    SSmfFile smf;
    if (!ParseSmf(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), smf, error)) {
        error = "cannot read the MIDI file " + path + ": " + error;
        return false;
    }
    if (fileTempo) {
        const bool atStart = !smf.tempos.empty() && smf.tempos.front().tick == 0;
        *fileTempo = atStart ? 60000000.0 / smf.tempos.front().microsecondsPerQuarter : 120.0;
    }
    for (const SSmfChannelEvent& ev : smf.events) {
        const double seconds =
            tempoBPM > 0.0 ? static_cast<double>(ev.tick) / smf.ticksPerQuarter * 60.0 / tempoBPM
                           : SmfTickSeconds(smf, ev.tick);
        // Events a day or more away are beyond any render.
        if (!(seconds < kMaxEventSeconds))
            continue;
        SMidiEvent e;
        e.sample = static_cast<int64_t>(std::llround(seconds * sampleRate));
        e.length = ev.length;
        for (uint32_t i = 0; i < ev.length; ++i)
            e.data[i] = ev.data[i];
        Add(e);
    }
    return true;
}

void CMidiSchedule::Add(const SMidiEvent& e)
{
    const auto pos = std::upper_bound(mEvents.begin(), mEvents.end(), e.sample,
                                      [](int64_t s, const SMidiEvent& x) { return s < x.sample; });
    mEvents.insert(pos, e);
}

void CMidiSchedule::EventsInBlock(int64_t start, int32_t frames, size_t& first, size_t& count) const
{
    const auto lo = std::lower_bound(mEvents.begin(), mEvents.end(), start,
                                     [](const SMidiEvent& x, int64_t s) { return x.sample < s; });
    const auto hi = std::lower_bound(lo, mEvents.end(), start + frames,
                                     [](const SMidiEvent& x, int64_t s) { return x.sample < s; });
    first = static_cast<size_t>(lo - mEvents.begin());
    count = static_cast<size_t>(hi - lo);
}

void CMidiSchedule::PacketsForBlock(int64_t start, int32_t frames, std::vector<AAX_CMidiPacket>& out) const
{
    out.clear();
    size_t first = 0, count = 0;
    EventsInBlock(start, frames, first, count);
    for (size_t i = first; i < first + count; ++i) {
        const SMidiEvent& e = mEvents[i];
        AAX_CMidiPacket p;
        p.mTimestamp = static_cast<uint32_t>(e.sample - start);
        p.mLength = e.length;
        for (int b = 0; b < 4; ++b)
            p.mData[b] = e.data[b];
        out.push_back(p);
    }
}

std::vector<SBlock> PlanBlocks(int64_t totalSamples, int32_t blockSize)
{
    std::vector<SBlock> blocks;
    if (blockSize <= 0)
        return blocks;
    for (int64_t s = 0; s < totalSamples; s += blockSize)
        blocks.push_back({s, static_cast<int32_t>(std::min<int64_t>(blockSize, totalSamples - s))});
    return blocks;
}

}  // namespace AAXHost
