// aaxhost render-direct: the wrapped plug-in (or any VST 2 library or VST 3
// bundle) hosted directly, without the wrapper, fed the same MIDI file or
// test signal as `render`, and its levels reported: the baseline that tells
// a plug-in that is silent by itself from one the wrapper silences.
#pragma once

#include <string>

namespace AAXHost {

struct SDirectRenderRequest {
    std::string plugin;  // a VST 2 library, a VST 3 bundle, or an .aaxplugin wrapper bundle
    std::string midiPath;
    bool testInput = false;
    double seconds = 2.0;
    double sampleRate = 48000.0;
    int blockSize = 512;
    bool json = false;
    std::string outPath;  // the plug-in's first two outputs as a WAV file; empty: none
};

int RunDirectRender(const SDirectRenderRequest& request);

}  // namespace AAXHost
