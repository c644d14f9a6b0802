// The WAV files of a render: the main output and one file per stem, for
// each instance.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "PluginDescription.h"
#include "RenderConfig.h"
#include "RenderReport.h"
#include "WavWriter.h"

namespace AAXHost {

// One file and the output channels it takes, from firstChannel on.
struct SOutputFile {
    std::unique_ptr<CWavWriter> writer;
    int firstChannel = 0;
    int channels = 0;
};

// Main pair plus every registered stem channel, and never fewer than the
// wrapper's 34.
int OutputChannelCount(const SComponentInfo& component);

// Opens the main file and, with a stems folder, one file per stem; the
// paths are added to report.files.
bool OpenOutputs(const SComponentInfo& component, const SRenderConfig& config, int instance,
                 std::vector<SOutputFile>& files, SInstanceReport& report, std::string& error);

// "out.wav" for instance 0, "out.1.wav" for instance 1 and so on.
std::string InstanceFileName(const std::string& path, int instance);

}  // namespace AAXHost
