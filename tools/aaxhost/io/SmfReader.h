// A Standard MIDI File reader that trusts nothing in the file: every length
// is checked against what is there, so a truncated, mutated or hostile file
// gives an error or fewer events, never a read past the data or an abort.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace AAXHost {

struct SSmfChannelEvent {
    uint64_t tick = 0;
    uint32_t length = 0;  // 2 or 3
    uint8_t data[3] = {0, 0, 0};
};

struct SSmfTempo {
    uint64_t tick = 0;
    uint32_t microsecondsPerQuarter = 500000;
};

struct SSmfFile {
    uint16_t format = 0;
    uint16_t ticksPerQuarter = 480;
    std::vector<SSmfChannelEvent> events;  // every track's channel messages, in time order
    std::vector<SSmfTempo> tempos;         // in time order
};

// Parses the bytes of a whole file. Meta events other than tempo, system
// exclusive and system messages are skipped; a track without End of Track
// ends with its chunk.
bool ParseSmf(const uint8_t* data, size_t size, SSmfFile& out, std::string& error);

// Seconds from the start of the file to `tick`, through the tempo map.
double SmfTickSeconds(const SSmfFile& file, uint64_t tick);

}  // namespace AAXHost
