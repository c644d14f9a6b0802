// Running the aaxhost executable and the files around it, shared by the
// suites that drive it (aaxhost.*, vst3.e2e.*).
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <utility>
#include <vector>

namespace AAXHostTest {

struct SRunResult {
    int exitCode = -1;
    std::string out;
    std::string err;
    std::vector<std::string> trace;  // filled by suites whose plug-in writes one
    nlohmann::json Json() const;     // stdout parsed; null when it is not JSON
};

// Runs aaxhost with these arguments (each quoted for the shell) and extra
// NAME=VALUE environment settings; its output files go under workRoot.
SRunResult RunHostIn(const std::string& workRoot, const std::vector<std::string>& args,
                     const std::vector<std::string>& env = {});

// The whole file; empty when it cannot be read.
std::string ReadWholeFile(const std::string& path);

// A fresh, empty folder root/<running test>/name (<suite>.<process id> in a
// suite's set-up). Cleared the first time it is asked for, so that tests run
// in parallel (ctest -j) never share or clear each other's files, and what a
// failed test wrote stays to be read.
std::string TestFolder(const std::string& root, const std::string& name);

// A one-track SMF at 480 ticks per quarter note (no tempo event: 120 BPM)
// holding these raw channel messages at these beats.
using SBeatEvent = std::pair<double, std::vector<unsigned char>>;
void WriteMidiEvents(const std::string& path, std::vector<SBeatEvent> events);

}  // namespace AAXHostTest
