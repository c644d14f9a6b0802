// One object that is processor and edit controller, built in three shapes to
// show what a plug-in declares to its host beyond audio (see DeclaringShape.h):
// an effect whose latency is a parameter and whose tail is finite, and
// instruments with auxiliary output buses that write a known level each.
#pragma once

#include <atomic>
#include <vector>

#include "../common/CStrictHostCheck.h"
#include "DeclaringShape.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivsteditcontroller.h"
#include "public.sdk/source/vst/vstcomponent.h"

namespace MrvTest {

class DeclaringPlugin : public Steinberg::Vst::Component,
                        public Steinberg::Vst::IAudioProcessor,
                        public Steinberg::Vst::IEditController {
public:
    static Steinberg::FUnknown* create();

    // IComponent / IPluginBase
    Steinberg::tresult PLUGIN_API initialize(Steinberg::FUnknown* context) override;
    Steinberg::tresult PLUGIN_API terminate() override { return Steinberg::Vst::Component::terminate(); }
    Steinberg::tresult PLUGIN_API activateBus(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection dir,
                                              Steinberg::int32 index, Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API setActive(Steinberg::TBool state) override;
    Steinberg::tresult PLUGIN_API setState(Steinberg::IBStream* state) override;
    Steinberg::tresult PLUGIN_API getState(Steinberg::IBStream* state) override;

    // IAudioProcessor
    Steinberg::tresult PLUGIN_API setBusArrangements(Steinberg::Vst::SpeakerArrangement*, Steinberg::int32,
                                                     Steinberg::Vst::SpeakerArrangement*, Steinberg::int32) override
    {
        return Steinberg::kResultFalse;
    }
    Steinberg::tresult PLUGIN_API getBusArrangement(Steinberg::Vst::BusDirection dir, Steinberg::int32 index,
                                                    Steinberg::Vst::SpeakerArrangement& arr) override;
    Steinberg::tresult PLUGIN_API canProcessSampleSize(Steinberg::int32 size) override
    {
        return size == Steinberg::Vst::kSample32 ? Steinberg::kResultOk : Steinberg::kResultFalse;
    }
    Steinberg::uint32 PLUGIN_API getLatencySamples() override;
    Steinberg::tresult PLUGIN_API setupProcessing(Steinberg::Vst::ProcessSetup& setup) override;
    Steinberg::tresult PLUGIN_API setProcessing(Steinberg::TBool) override { return Steinberg::kResultOk; }
    Steinberg::tresult PLUGIN_API process(Steinberg::Vst::ProcessData& data) override;
    Steinberg::uint32 PLUGIN_API getTailSamples() override;

    // IEditController
    Steinberg::tresult PLUGIN_API setComponentState(Steinberg::IBStream*) override { return Steinberg::kResultOk; }
    Steinberg::int32 PLUGIN_API getParameterCount() override { return 1; }
    Steinberg::tresult PLUGIN_API getParameterInfo(Steinberg::int32 index, Steinberg::Vst::ParameterInfo& info) override;
    Steinberg::tresult PLUGIN_API getParamStringByValue(Steinberg::Vst::ParamID id, Steinberg::Vst::ParamValue value,
                                                        Steinberg::Vst::String128 string) override;
    Steinberg::tresult PLUGIN_API getParamValueByString(Steinberg::Vst::ParamID id, Steinberg::Vst::TChar* string,
                                                        Steinberg::Vst::ParamValue& value) override;
    // Plain values are samples of latency.
    Steinberg::Vst::ParamValue PLUGIN_API normalizedParamToPlain(Steinberg::Vst::ParamID, Steinberg::Vst::ParamValue v) override
    {
        return v * kMaxLatency;
    }
    Steinberg::Vst::ParamValue PLUGIN_API plainParamToNormalized(Steinberg::Vst::ParamID, Steinberg::Vst::ParamValue v) override
    {
        return v / kMaxLatency;
    }
    Steinberg::Vst::ParamValue PLUGIN_API getParamNormalized(Steinberg::Vst::ParamID id) override;
    Steinberg::tresult PLUGIN_API setParamNormalized(Steinberg::Vst::ParamID id, Steinberg::Vst::ParamValue value) override;
    Steinberg::tresult PLUGIN_API setComponentHandler(Steinberg::Vst::IComponentHandler* handler) override;
    Steinberg::IPlugView* PLUGIN_API createView(Steinberg::FIDString) override { return nullptr; }

    OBJ_METHODS(DeclaringPlugin, Steinberg::Vst::Component)
    DEFINE_INTERFACES
        DEF_INTERFACE(Steinberg::Vst::IAudioProcessor)
        DEF_INTERFACE(Steinberg::Vst::IEditController)
    END_DEFINE_INTERFACES(Steinberg::Vst::Component)
    REFCOUNT_METHODS(Steinberg::Vst::Component)

private:
    void SetLatencyValue(Steinberg::Vst::ParamValue value);
    void Delay(Steinberg::Vst::ProcessData& data);
    static void WriteLevels(Steinberg::Vst::ProcessData& data);

    // The latency parameter, as the host last set it on either side.
    std::atomic<double> mLatencyValue{kDefaultLatencyValue};
    Steinberg::Vst::IComponentHandler* mHandler = nullptr;
    double mSampleRate = 44100.0;
    std::vector<float> mRing[2];
    size_t mWrite = 0;
    CStrictHostCheck mHostCheck;
};

}  // namespace MrvTest
