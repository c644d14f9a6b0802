// Helpers for the aaxhost tests: running the aaxhost executable, writing
// MIDI files, reading WAV output.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace AAXHostTest {

struct SRunResult {
    int exitCode = -1;
    std::string out;
    std::string err;
    nlohmann::json Json() const;  // stdout parsed; null when it is not JSON
};

// Runs aaxhost with these arguments (each quoted for the shell).
SRunResult RunHost(const std::vector<std::string>& args);

// A fresh, empty folder for one test's files.
std::string TempDir(const std::string& name);

struct SNote {
    double beat;       // start, in quarter notes
    double length;     // in quarter notes
    int key;
    int velocity;
};
// A one-track SMF at 480 ticks per quarter (no tempo event: 120 BPM).
// Extra raw channel messages can be placed at given beats.
void WriteMidiFile(const std::string& path, const std::vector<SNote>& notes,
                   const std::vector<std::pair<double, std::vector<unsigned char>>>& extra = {});

// A short phrase with notes off the block grid, overlapping chords, a
// controller and a pitch bend.
void WriteTestPhrase(const std::string& path);

std::vector<std::vector<float>> ReadWavChannels(const std::string& path, int* sampleRate = nullptr);

// Largest absolute sample difference; infinity when the shapes differ.
double MaxDifference(const std::vector<float>& a, const std::vector<float>& b);
double Peak(const std::vector<float>& a);

}  // namespace AAXHostTest
