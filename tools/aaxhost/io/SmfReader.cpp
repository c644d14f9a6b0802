#include "SmfReader.h"

#include <algorithm>

#include "MidiSchedule.h"

namespace AAXHost {

namespace {

// Enough for any real song; bounds the memory a hostile file can claim.
constexpr size_t kMaxEvents = 4 * 1024 * 1024;

class CCursor {
public:
    CCursor(const uint8_t* data, size_t size) : mData(data), mSize(size) {}
    bool AtEnd() const { return mPos >= mSize; }
    size_t Left() const { return mSize - mPos; }
    bool Byte(uint8_t& b)
    {
        if (mPos >= mSize)
            return false;
        b = mData[mPos++];
        return true;
    }
    bool Peek(uint8_t& b) const
    {
        if (mPos >= mSize)
            return false;
        b = mData[mPos];
        return true;
    }
    bool Skip(size_t n)
    {
        if (n > Left())
            return false;
        mPos += n;
        return true;
    }
    bool Be(int bytes, uint32_t& value)
    {
        value = 0;
        for (int i = 0; i < bytes; ++i) {
            uint8_t b = 0;
            if (!Byte(b))
                return false;
            value = (value << 8) | b;
        }
        return true;
    }
    // A variable-length quantity: at most four bytes, as the format allows.
    bool Vlq(uint32_t& value)
    {
        value = 0;
        for (int i = 0; i < 4; ++i) {
            uint8_t b = 0;
            if (!Byte(b))
                return false;
            value = (value << 7) | (b & 0x7F);
            if ((b & 0x80) == 0)
                return true;
        }
        return false;
    }
    const uint8_t* Here() const { return mData + mPos; }

private:
    const uint8_t* mData;
    size_t mSize;
    size_t mPos = 0;
};

bool ParseTrack(CCursor track, SSmfFile& out, std::string& error)
{
    uint64_t tick = 0;
    uint8_t running = 0;
    while (!track.AtEnd()) {
        uint32_t delta = 0;
        if (!track.Vlq(delta))
            return true;  // a torn last event: the track ends there
        tick += delta;
        uint8_t status = 0;
        if (!track.Peek(status))
            return true;
        if (status >= 0x80) {
            track.Byte(status);
        } else if (running != 0) {
            status = running;
        } else {
            error = "a data byte without a status byte";
            return false;
        }
        if (status == 0xFF) {
            uint8_t type = 0;
            uint32_t length = 0;
            if (!track.Byte(type) || !track.Vlq(length) || length > track.Left())
                return true;
            if (type == 0x2F)
                return true;  // End of Track
            if (type == 0x51 && length == 3) {
                const uint8_t* p = track.Here();
                const uint32_t tempo = (uint32_t{p[0]} << 16) | (uint32_t{p[1]} << 8) | p[2];
                if (tempo > 0)
                    out.tempos.push_back({tick, tempo});
            }
            track.Skip(length);
            continue;
        }
        if (status == 0xF0 || status == 0xF7) {
            uint32_t length = 0;
            if (!track.Vlq(length) || !track.Skip(length))
                return true;
            running = 0;
            continue;
        }
        if (status >= 0xF0) {
            // System common or real-time bytes have no place in a file; skip
            // their data bytes.
            track.Skip(status == 0xF2 ? 2 : (status == 0xF1 || status == 0xF3) ? 1 : 0);
            running = 0;
            continue;
        }
        running = status;
        const uint32_t length = ChannelMessageLength(status);
        SSmfChannelEvent event;
        event.tick = tick;
        event.length = length;
        event.data[0] = status;
        // Channel messages are at most three bytes; the bound also tells the
        // optimiser so.
        for (uint32_t i = 1; i < length && i < sizeof(event.data); ++i) {
            uint8_t b = 0;
            if (!track.Byte(b))
                return true;
            if (b >= 0x80) {
                error = "a status byte inside a channel message";
                return false;
            }
            event.data[i] = b;
        }
        if (out.events.size() >= kMaxEvents) {
            error = "more than " + std::to_string(kMaxEvents) + " events";
            return false;
        }
        out.events.push_back(event);
    }
    return true;
}

}  // namespace

bool ParseSmf(const uint8_t* data, size_t size, SSmfFile& out, std::string& error)
{
    out = SSmfFile();
    CCursor file(data, size);
    uint32_t tag = 0, length = 0, format = 0, tracks = 0, division = 0;
    if (!file.Be(4, tag) || tag != 0x4D546864 /* MThd */ || !file.Be(4, length) || length < 6 ||
        !file.Be(2, format) || !file.Be(2, tracks) || !file.Be(2, division) || !file.Skip(length - 6)) {
        error = "not a Standard MIDI File (no MThd header)";
        return false;
    }
    if (division & 0x8000) {
        error = "SMPTE time division is not supported";
        return false;
    }
    if (division == 0) {
        error = "a time division of 0 ticks per quarter note";
        return false;
    }
    out.format = static_cast<uint16_t>(format);
    out.ticksPerQuarter = static_cast<uint16_t>(division);
    // Every track's events, merged in time order; stable, so events of one
    // time keep their track order.
    while (!file.AtEnd()) {
        if (!file.Be(4, tag) || !file.Be(4, length))
            break;  // trailing bytes after the last chunk
        const size_t available = std::min<size_t>(length, file.Left());
        if (tag == 0x4D54726B /* MTrk */ && !ParseTrack(CCursor(file.Here(), available), out, error))
            return false;
        file.Skip(available);
    }
    std::stable_sort(out.events.begin(), out.events.end(),
                     [](const SSmfChannelEvent& a, const SSmfChannelEvent& b) { return a.tick < b.tick; });
    std::stable_sort(out.tempos.begin(), out.tempos.end(),
                     [](const SSmfTempo& a, const SSmfTempo& b) { return a.tick < b.tick; });
    return true;
}

double SmfTickSeconds(const SSmfFile& file, uint64_t tick)
{
    const double ppq = file.ticksPerQuarter;
    double seconds = 0.0;
    uint64_t at = 0;
    uint32_t tempo = 500000;  // 120 BPM until the first tempo event
    for (const SSmfTempo& t : file.tempos) {
        if (t.tick >= tick)
            break;
        seconds += static_cast<double>(t.tick - at) / ppq * tempo / 1e6;
        at = t.tick;
        tempo = t.microsecondsPerQuarter;
    }
    return seconds + static_cast<double>(tick - at) / ppq * tempo / 1e6;
}

}  // namespace AAXHost
