// Everything a render is asked to do, as given on the command line.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace AAXHost {

struct SParameterSet {
    std::string id;
    double value = 0.0;
    double atSeconds = 0.0;  // applied at the start of the buffer holding this time
};

// Parses "ID=VALUE" or "ID=VALUE@SECONDS".
bool ParseParameterSet(const std::string& text, SParameterSet& out, std::string& error);
// Parses "N/D".
bool ParseMeter(const std::string& text, int32_t& numerator, int32_t& denominator, std::string& error);

struct SRenderConfig {
    std::string effectID;  // empty: the first effect
    std::string outPath;
    std::string midiPath;
    double sampleRate = 48000.0;
    int32_t blockSize = 512;
    double tempo = 0.0;  // 0: the MIDI file's tempo, else 120
    int32_t meterNumerator = 4;
    int32_t meterDenominator = 4;
    double seconds = 0.0;  // 0: the MIDI length plus the tail, or the tail alone
    // Seconds after the last MIDI event; below 0: the plug-in's declared
    // tail, at least kDefaultTailSeconds and at most kMostTailSeconds.
    double tail = -1.0;
    static constexpr double kDefaultTailSeconds = 2.0;
    static constexpr double kMostTailSeconds = 30.0;
    std::vector<SParameterSet> sets;
    bool bypass = false;
    bool testInput = false;
    std::string saveState;
    std::string loadState;
    std::string stemsDir;
    std::string plotPath;  // PNG picture of the render; empty: none
    int32_t instances = 1;
    bool stopped = false;     // the transport reports stopped, at the song start
    bool offline = false;     // the effect is told the render is offline
    bool compensate = false;  // the latency reported before the first buffer is trimmed from the files
    double editorAt = -1.0;   // < 0: no view; else instance 0's view opens at this time
    bool editorWindow = true;  // the view gets an X11 window when DISPLAY is set
    bool editorClick = false;  // a pointer click once the view is up
    int editorClickX = 0, editorClickY = 0;
    bool json = false;
    bool progress = true;  // shown only when standard output is a terminal
};

}  // namespace AAXHost
