#include "EffectProcessor.h"

#include "../common/CTrace.h"
#include "../common/LastParameterValue.h"
#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/vst/ivstparameterchanges.h"
#include "public.sdk/source/vst/vstbus.h"

namespace MrvTest {

using namespace Steinberg;
using namespace Steinberg::Vst;

EffectProcessor::EffectProcessor() { setControllerClass(kEffectControllerUID); }

FUnknown* EffectProcessor::create() { return static_cast<IAudioProcessor*>(new EffectProcessor); }

tresult PLUGIN_API EffectProcessor::initialize(FUnknown* context)
{
    Trace("effect.initialize");
    const tresult result = Component::initialize(context);
    if (result != kResultOk)
        return result;
    audioInputs.push_back(IPtr<Bus>(new AudioBus(STR16("In"), kMain, BusInfo::kDefaultActive, SpeakerArr::kStereo), false));
    audioOutputs.push_back(IPtr<Bus>(new AudioBus(STR16("Out"), kMain, BusInfo::kDefaultActive, SpeakerArr::kStereo), false));
    return kResultOk;
}

tresult PLUGIN_API EffectProcessor::terminate()
{
    Trace("effect.terminate");
    return Component::terminate();
}

tresult PLUGIN_API EffectProcessor::connect(IConnectionPoint* other)
{
    Trace("effect.connect");
    return Component::connect(other);
}

tresult PLUGIN_API EffectProcessor::setState(IBStream* state)
{
    double gain = 0;
    int32 bytesRead = 0;
    if (!state || state->read(&gain, sizeof(gain), &bytesRead) != kResultOk || bytesRead != sizeof(gain))
        return kResultFalse;
    mGain = gain;
    Trace("effect.setState gain=%.6f", mGain.load());
    return kResultOk;
}

tresult PLUGIN_API EffectProcessor::getState(IBStream* state)
{
    if (!state)
        return kInvalidArgument;
    double gain = mGain.load(std::memory_order_relaxed);
    return state->write(&gain, sizeof(gain), nullptr);
}

tresult PLUGIN_API EffectProcessor::setBusArrangements(SpeakerArrangement*, int32, SpeakerArrangement*, int32)
{
    return kResultFalse;
}

tresult PLUGIN_API EffectProcessor::getBusArrangement(BusDirection, int32 index, SpeakerArrangement& arr)
{
    if (index != 0)
        return kInvalidArgument;
    arr = SpeakerArr::kStereo;
    return kResultOk;
}

tresult PLUGIN_API EffectProcessor::canProcessSampleSize(int32 symbolicSampleSize)
{
    return symbolicSampleSize == kSample32 ? kResultOk : kResultFalse;
}

tresult PLUGIN_API EffectProcessor::setupProcessing(ProcessSetup& setup)
{
    Trace("effect.setupProcessing rate=%.1f", setup.sampleRate);
    mHostCheck.Setup(setup);
    return kResultOk;
}

tresult PLUGIN_API EffectProcessor::setActive(TBool state)
{
    Trace("effect.setActive %d", state ? 1 : 0);
    mHostCheck.Active(state != 0);
    return Component::setActive(state);
}

tresult PLUGIN_API EffectProcessor::setProcessing(TBool state)
{
    Trace("effect.setProcessing %d", state ? 1 : 0);
    return kResultOk;
}

tresult PLUGIN_API EffectProcessor::process(ProcessData& data)
{
    mHostCheck.BeforeProcess(data);
    ParamValue value = 0;
    if (LastParameterValue(data.inputParameterChanges, kEffectGain, value))
        mGain = value;
    Trace("effect.process samples=%d events=%s", data.numSamples, data.inputEvents ? "list" : "none");
    if (data.numInputs < 1 || data.numOutputs < 1)
        return kResultOk;
    for (int32 c = 0; c < 2; ++c) {
        const float* in = data.inputs[0].channelBuffers32[c];
        float* out = data.outputs[0].channelBuffers32[c];
        if (!in || !out)
            continue;
        for (int32 s = 0; s < data.numSamples; ++s)
            out[s] = static_cast<float>(in[s] * mGain.load(std::memory_order_relaxed));
    }
    return kResultOk;
}

}  // namespace MrvTest
