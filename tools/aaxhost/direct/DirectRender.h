// A whole render of a VST 2 library hosted directly, the way the wrapper's
// fake host drives it (same opening sequence, sample-rate set-up, time
// information, block plan and MIDI schedule), so that a wrapped render can
// be compared with it sample for sample.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "MidiSchedule.h"

namespace AAXDirect {

struct SDirectRenderConfig {
    std::string libraryPath;
    double sampleRate = 48000.0;
    int blockSize = 512;
    double tempo = 120.0;
    int64_t totalSamples = 0;
    bool testInput = false;
    bool oneEventPerCall = false;  // as the wrapper delivers them, instead of one list per buffer
    // As a mainstream host (and the wrapper's STANDARD mode) does: the rate
    // and block size before the first resume, the rate answered as a number,
    // no program selected; otherwise as the wrapper's CLASSIC mode does.
    bool standardHost = false;
    std::vector<std::pair<int, float>> parametersAtStart;  // index, value
    std::vector<char> chunkAtStart;  // given to effSetChunk (bank) when not empty
};

struct SDirectRenderResult {
    std::vector<std::vector<float>> outputs;  // per channel (at least 34), totalSamples each
    std::vector<char> chunkAtEnd;  // effGetChunk (bank) after the render
    std::vector<float> initialParameters;  // getParameter of each parameter once opened
    int32_t latency = 0;  // as the plug-in declares it after the render
};

bool RenderDirect(const SDirectRenderConfig& config, const AAXHost::CMidiSchedule& schedule,
                  SDirectRenderResult& result, std::string& error);

}  // namespace AAXDirect
