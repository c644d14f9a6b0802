// A gain effect split the way DPF splits its plug-ins: the class the
// factory makes is the component only; its audio processor is an object of
// its own, handed out by the component, that answers no query but its own
// interface (a host that asks it for the component gets nothing). The edit
// controller is the test effect's separate one, wired through connection
// points. Built strict (MRV_STRICT): the factory makes the class only as
// IComponent and processing before setActive(true) stops the process.
#pragma once

#include <atomic>

#include "../common/CStrictHostCheck.h"
#include "EffectIDs.h"
#include "base/source/fobject.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "public.sdk/source/vst/vstcomponent.h"

namespace MrvTest {

// What the component and its processor share.
struct SSplitShared {
    std::atomic<double> gain{1.0};
    CStrictHostCheck hostCheck;
};

class SplitProcessor : public Steinberg::FObject, public Steinberg::Vst::IAudioProcessor {
public:
    explicit SplitProcessor(SSplitShared& shared) : mShared(shared) {}

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

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** obj) override;
    REFCOUNT_METHODS(Steinberg::FObject)

private:
    // Owned by the component, which outlives every call a host makes here.
    SSplitShared& mShared;
};

class SplitEffect : public Steinberg::Vst::Component {
public:
    SplitEffect();
    static Steinberg::FUnknown* create();

    Steinberg::tresult PLUGIN_API initialize(Steinberg::FUnknown* context) override;
    Steinberg::tresult PLUGIN_API terminate() override;
    Steinberg::tresult PLUGIN_API setActive(Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API setState(Steinberg::IBStream* state) override;
    Steinberg::tresult PLUGIN_API getState(Steinberg::IBStream* state) override;

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** obj) override;
    REFCOUNT_METHODS(Steinberg::Vst::Component)

private:
    SSplitShared mShared;
    Steinberg::IPtr<SplitProcessor> mProcessor;
};

}  // namespace MrvTest
