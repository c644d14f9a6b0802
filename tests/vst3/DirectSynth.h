// Our test instrument driven straight through the VST 3 interfaces, without
// the wrapper: the reference that wrapped renders are compared with.
#pragma once

#include <string>
#include <vector>

#include "pluginterfaces/base/ipluginbase.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"
#include "pluginterfaces/vst/ivstevents.h"
#include "pluginterfaces/vst/ivsthostapplication.h"

namespace vst3test {

struct SDirectNote {
    Steinberg::int64 sample;  // absolute position
    bool on;
    Steinberg::int16 pitch;
    int velocity;  // MIDI 0..127
};

class CDirectSynth {
public:
    CDirectSynth(const std::string& bundlePath, double sampleRate);
    ~CDirectSynth();
    bool ok() const { return mProcessor != nullptr; }

    // Renders `total` samples in blocks of `block`, each note placed in the
    // block that holds it: left then right channel.
    void Render(const std::vector<SDirectNote>& notes, Steinberg::int64 total, Steinberg::int32 block,
                std::vector<float>& left, std::vector<float>& right);

private:
    void* mModule = nullptr;
    Steinberg::IPluginFactory* mFactory = nullptr;
    Steinberg::Vst::IHostApplication* mContext = nullptr;
    Steinberg::Vst::IAudioProcessor* mProcessor = nullptr;
    Steinberg::Vst::IComponent* mComponent = nullptr;
};

}  // namespace vst3test
