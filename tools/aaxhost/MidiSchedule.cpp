#include "MidiSchedule.h"

#include <smf.h>

#include <algorithm>
#include <cmath>

namespace AAXHost {

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
    smf_t* smf = smf_load(path.c_str());
    if (!smf) {
        error = "cannot read MIDI file " + path;
        return false;
    }
    if (fileTempo) {
        smf_tempo_t* t = smf_get_tempo_by_pulses(smf, 0);
        *fileTempo = (t && t->microseconds_per_quarter_note > 0) ? 60000000.0 / t->microseconds_per_quarter_note : 120.0;
    }
    const double ppqn = smf->ppqn > 0 ? smf->ppqn : 960;
    smf_event_t* ev = nullptr;
    while ((ev = smf_get_next_event(smf)) != nullptr) {
        if (smf_event_is_metadata(ev) || ev->midi_buffer_length < 1)
            continue;
        const uint8_t status = ev->midi_buffer[0];
        const uint32_t len = ChannelMessageLength(status);
        if (len == 0 || static_cast<uint32_t>(ev->midi_buffer_length) < len)
            continue;
        const double seconds = tempoBPM > 0.0 ? ev->time_pulses / ppqn * 60.0 / tempoBPM : ev->time_seconds;
        SMidiEvent e;
        e.sample = static_cast<int64_t>(std::llround(seconds * sampleRate));
        e.length = len;
        for (uint32_t i = 0; i < len; ++i)
            e.data[i] = ev->midi_buffer[i];
        Add(e);
    }
    smf_delete(smf);
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
