// Running aaxhost on the wrapped test instrument and reading back what the
// instrument saw: its trace file (one line per call it received), the
// render summary and aaxhost's state file.
#pragma once

#include <cstdint>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace vst3e2e {

struct SRun {
    int exitCode = -1;
    std::string out;
    std::string err;
    std::vector<std::string> trace;  // the instrument's trace, line by line
    nlohmann::json Json() const;     // standard output parsed; null when it is not JSON
};

// Runs aaxhost with these arguments, the instrument tracing into a fresh
// file; env holds extra NAME=VALUE settings for the child.
SRun RunHost(const std::vector<std::string>& args, const std::vector<std::string>& env = {});

// A fresh, empty folder for one test's files.
std::string TempDir(const std::string& name);

// The bundle built around the test instrument.
std::string SynthBundle();

// A type-0 SMF at 480 ticks per quarter note holding these channel
// messages at these ticks (no tempo event).
struct SMidiEvent {
    uint32_t tick;
    std::vector<uint8_t> bytes;
};
void WriteSmf(const std::string& path, std::vector<SMidiEvent> events);

// One process call of the instrument, rebuilt from its trace.
struct SParamPoint {
    unsigned id;
    double value;
    int offset;
    size_t line;  // index in the trace
};
struct SNoteEvent {
    bool on;
    int channel;
    int pitch;
    double velocity;
    int offset;
    int flags;   // note-on only
    int noteId;  // note-on only
};
struct SProcessCall {
    unsigned state = 0;
    double rate = 0, tempo = 0, music = 0;
    int numerator = 0, denominator = 0;
    long long samples = 0;  // project time in samples
    int frames = 0;
    int events = 0;
    std::vector<SParamPoint> params;  // received at the start of this call
    std::vector<SNoteEvent> notes;
    size_t firstLine = 0;  // first trace line of this call (its first parameter, or its context)
};
std::vector<SProcessCall> ProcessCalls(const std::vector<std::string>& trace);

// Index of the first line starting with prefix at or after from; npos when none.
size_t FindLine(const std::vector<std::string>& trace, const std::string& prefix, size_t from = 0);
size_t CountLines(const std::vector<std::string>& trace, const std::string& prefix);

// aaxhost's state file: chunk ID -> data.
struct SStateChunk {
    uint32_t id = 0;
    uint32_t version = 0;
    std::vector<uint8_t> data;
};
std::vector<SStateChunk> ReadStateFile(const std::string& path);
void WriteStateFile(const std::string& path, const std::vector<SStateChunk>& chunks);

// The wrapper chunk's four-character code, as this bundle is built.
constexpr uint32_t kWrapperChunkID = ('M' << 24) | ('v' << 16) | ('E' << 8) | '3';

uint32_t ReadU32(const std::vector<uint8_t>& bytes, size_t at);

}  // namespace vst3e2e
