// Offline render: instances made through the plug-in's factories, driven
// buffer by buffer through its native process procedure, with MIDI,
// transport, parameter changes and state, written to WAV files.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "HostController.h"
#include "HostMidiNode.h"
#include "RenderConfig.h"

namespace AAXHost {

class CPluginSession;

struct SChannelStats {
    double peak = 0.0;
    double sumSquares = 0.0;
    int64_t samples = 0;
    double Rms() const;
    void Add(const float* data, int frames);
};

struct SInstanceReport {
    std::vector<SChannelStats> channels;  // every output channel
    size_t midiIn = 0;
    std::vector<SPostedMidi> midiOut;
    std::vector<SAutomationEvent> automation;
    std::vector<std::string> files;
};

struct SRenderReport {
    double sampleRate = 0.0;
    int32_t blockSize = 0;
    int64_t totalSamples = 0;
    double wallSeconds = 0.0;
    int64_t processCalls = 0;  // calls of the process procedure, each with every instance
    std::vector<SInstanceReport> instances;
};

bool Render(CPluginSession& session, const SRenderConfig& config, SRenderReport& report, std::string& error);

// "out.wav" for instance 0, "out.1.wav" for instance 1 and so on.
std::string InstanceFileName(const std::string& path, int instance);

nlohmann::json RenderReportToJson(const SRenderReport& report);
void PrintRenderReport(std::ostream& out, const SRenderReport& report);

}  // namespace AAXHost
