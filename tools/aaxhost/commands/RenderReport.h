// What a render measured, per instance and output channel, and its text and
// JSON forms.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "HostController.h"
#include "HostMidiNode.h"

namespace AAXHost {

// Level of one output channel over the render. Peak and RMS are of the
// finite samples; NaN and infinities are counted apart, never taken for
// silence, and so are denormals (slow on most processors).
struct SChannelStats {
    double peak = 0.0;
    double sumSquares = 0.0;
    int64_t samples = 0;
    int64_t nans = 0;
    int64_t infinities = 0;
    int64_t denormals = 0;
    double Rms() const;
    void Add(const float* data, int frames);
    void AddWithNonFinite(const float* data, int frames);
    bool Finite() const { return nans == 0 && infinities == 0; }
};

struct SInstanceReport {
    std::vector<SChannelStats> channels;  // every output channel
    size_t midiIn = 0;
    std::vector<SPostedMidi> midiOut;
    std::vector<SAutomationEvent> automation;
    std::vector<std::string> files;
    int32_t latency = 0;              // the last latency the effect reported
    std::vector<int32_t> latencies;   // every one it reported, in order
};

struct SPlotReport {
    std::string file;  // empty: no plot asked for
    int width = 0;
    int height = 0;
    std::vector<std::string> rows;  // the waveform rows drawn, top to bottom
};

struct SRenderReport {
    double sampleRate = 0.0;
    int32_t blockSize = 0;
    int64_t totalSamples = 0;
    double wallSeconds = 0.0;
    int64_t processCalls = 0;  // calls of the process procedure, each with every instance
    int32_t latencyCompensated = 0;  // samples trimmed from the start of every file (--compensate)
    double tailSeconds = 0.0;        // rendered after the last MIDI event (0 with --seconds)
    std::string tailSource;          // "option", "plugin", "plugin, capped", "default"; empty with --seconds
    std::vector<SInstanceReport> instances;
    SPlotReport plot;
};

nlohmann::json RenderReportToJson(const SRenderReport& report);
// False when any output sample is NaN or infinite: such a render is a failure.
bool RenderOutputIsFinite(const SRenderReport& report);
void PrintRenderReport(std::ostream& out, const SRenderReport& report);

}  // namespace AAXHost
