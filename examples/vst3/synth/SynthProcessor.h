// The test instrument's processor: a small deterministic polyphonic voice
// bank driven by note events, with parameters from the host.
#pragma once

#include <array>
#include <atomic>

#include "../common/CStrictHostCheck.h"
#include "SynthIDs.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstevents.h"
#include "public.sdk/source/vst/vstcomponent.h"

namespace MrvTest {

class SynthProcessor : public Steinberg::Vst::Component, public Steinberg::Vst::IAudioProcessor {
public:
    SynthProcessor();
    static Steinberg::FUnknown* create();

    Steinberg::tresult PLUGIN_API initialize(Steinberg::FUnknown* context) override;
    Steinberg::tresult PLUGIN_API terminate() override;
    Steinberg::tresult PLUGIN_API connect(Steinberg::Vst::IConnectionPoint* other) override;
    Steinberg::tresult PLUGIN_API disconnect(Steinberg::Vst::IConnectionPoint* other) override;
    Steinberg::tresult PLUGIN_API activateBus(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection dir,
                                              Steinberg::int32 index, Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API setActive(Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API setState(Steinberg::IBStream* state) override;
    Steinberg::tresult PLUGIN_API getState(Steinberg::IBStream* state) override;

    Steinberg::tresult PLUGIN_API setBusArrangements(Steinberg::Vst::SpeakerArrangement* inputs, Steinberg::int32 numIns,
                                                     Steinberg::Vst::SpeakerArrangement* outputs,
                                                     Steinberg::int32 numOuts) override;
    Steinberg::tresult PLUGIN_API getBusArrangement(Steinberg::Vst::BusDirection dir, Steinberg::int32 index,
                                                    Steinberg::Vst::SpeakerArrangement& arr) override;
    Steinberg::tresult PLUGIN_API canProcessSampleSize(Steinberg::int32 symbolicSampleSize) override;
    Steinberg::uint32 PLUGIN_API getLatencySamples() override { return 0; }
    Steinberg::tresult PLUGIN_API setupProcessing(Steinberg::Vst::ProcessSetup& setup) override;
    Steinberg::tresult PLUGIN_API setProcessing(Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API process(Steinberg::Vst::ProcessData& data) override;
    Steinberg::uint32 PLUGIN_API getTailSamples() override { return 0; }

    OBJ_METHODS(SynthProcessor, Steinberg::Vst::Component)
    DEFINE_INTERFACES
        DEF_INTERFACE(Steinberg::Vst::IAudioProcessor)
    END_DEFINE_INTERFACES(Steinberg::Vst::Component)
    REFCOUNT_METHODS(Steinberg::Vst::Component)

private:
    struct Voice {
        bool active = false;
        Steinberg::int16 pitch = 0;
        float velocity = 0.0f;
        double phase = 0.0;
    };
    void applyParameterChanges(Steinberg::Vst::IParameterChanges* changes);
    void handleEvent(const Steinberg::Vst::Event& event);
    void echoEvent(const Steinberg::Vst::Event& event, Steinberg::Vst::IEventList* out);
    float renderSample();

    std::array<Voice, 8> mVoices;
    // Written by the audio thread (parameter changes), read by getState on
    // the host's main thread.
    std::array<std::atomic<double>, kSynthAllParams> mParams{};
    double mSampleRate = 44100.0;
    CStrictHostCheck mHostCheck;
};

}  // namespace MrvTest
