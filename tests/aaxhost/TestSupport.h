// Helpers for the aaxhost tests: running the aaxhost executable, writing
// MIDI files, reading WAV output.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "HostRunFiles.h"

namespace AAXHostTest {

inline SRunResult RunHost(const std::vector<std::string>& args, const std::vector<std::string>& env = {})
{
    return RunHostIn(AAXHOST_TEST_WORK_DIR, args, env);
}

// A test bundle of this CMakeLists by name, in its subfolder ("standard",
// "bad", "faulty") or at the top.
inline std::string Bundle(const std::string& name, const std::string& folder = "")
{
    return std::string(AAXHOST_BUNDLE_DIR) + "/" + (folder.empty() ? "" : folder + "/") + name + ".aaxplugin";
}
inline std::string StandardBundle(const std::string& name) { return Bundle(name, "standard"); }

// A fresh, empty folder for one test's files.
inline std::string TempDir(const std::string& name) { return TestFolder(AAXHOST_TEST_WORK_DIR, name); }

struct SNote {
    double beat;    // start, in quarter notes
    double length;  // in quarter notes
    int key;
    int velocity;
};
// Notes, plus extra raw channel messages at given beats.
void WriteMidiFile(const std::string& path, const std::vector<SNote>& notes, std::vector<SBeatEvent> extra = {});

// A short phrase with notes off the block grid, overlapping chords, a
// controller and a pitch bend.
void WriteTestPhrase(const std::string& path);

std::vector<std::vector<float>> ReadWavChannels(const std::string& path, int* sampleRate = nullptr);

// A PNG read back: its size and 0xRRGGBB pixels; empty when unreadable.
struct SImage {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;
    uint32_t At(int x, int y) const { return pixels[static_cast<size_t>(y * width + x)]; }
};
SImage ReadPng(const std::string& path);

// Largest absolute sample difference; infinity when the shapes differ.
double MaxDifference(const std::vector<float>& a, const std::vector<float>& b);
double Peak(const std::vector<float>& a);

}  // namespace AAXHostTest
