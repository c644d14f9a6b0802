// Running aaxhost on the wrapped test instrument and reading back what the
// instrument saw: its trace file (one line per call it received), the
// render summary and aaxhost's state file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "HostRunFiles.h"
#include "StateFile.h"

namespace vst3e2e {

using AAXHostTest::SRunResult;

// Runs aaxhost with these arguments, the instrument tracing into a fresh
// file; env holds extra NAME=VALUE settings for the child.
SRunResult RunHost(const std::vector<std::string>& args, const std::vector<std::string>& env = {});

// A fresh, empty folder for one test's files.
inline std::string TempDir(const std::string& name) { return AAXHostTest::TestFolder(VST3E2E_WORK_DIR, name); }

// The bundle built around the test instrument.
inline std::string SynthBundle() { return std::string(VST3E2E_BUNDLE_DIR) + "/MrvTestSynth.aaxplugin"; }
// A bundle built in STANDARD mode.
inline std::string StandardBundle(const std::string& name)
{
    return std::string(VST3E2E_BUNDLE_DIR) + "/standard/" + name + ".aaxplugin";
}

// A file of channel messages at these ticks (480 per quarter note).
void WriteSmf(const std::string& path, const std::vector<std::pair<uint32_t, std::vector<unsigned char>>>& events);

// One process call of the instrument, rebuilt from its trace.
struct SParamPoint {
    unsigned id;
    double value;
    int offset;
    size_t line;  // index in the trace
};
struct SNoteEvent {
    bool on;
    int channel, pitch, offset, flags, noteId;  // flags and note ID: note-on only
    double velocity;
};
struct SProcessCall {
    unsigned state = 0;
    double rate = 0, tempo = 0, music = 0;
    int numerator = 0, denominator = 0, frames = 0, events = 0;
    long long samples = 0;            // project time in samples
    std::vector<SParamPoint> params;  // received at the start of this call
    std::vector<SNoteEvent> notes;
    size_t firstLine = 0;  // first trace line of this call (its first parameter, or its context)
};
std::vector<SProcessCall> ProcessCalls(const std::vector<std::string>& trace);

// Index of the first line starting with prefix at or after from; npos when none.
size_t FindLine(const std::vector<std::string>& trace, const std::string& prefix, size_t from = 0);
size_t CountLines(const std::vector<std::string>& trace, const std::string& prefix);

// aaxhost's state file, and the wrapper's chunk in it (null when absent).
std::vector<AAXHost::SStateChunk> ReadState(const std::string& path);
AAXHost::SStateChunk* WrapperChunk(std::vector<AAXHost::SStateChunk>& chunks);

uint32_t ReadU32(const std::vector<char>& bytes, size_t at);

}  // namespace vst3e2e
