#include "SplitEffect.h"

#include "../common/CTrace.h"
#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/vst/ivstparameterchanges.h"
#include "public.sdk/source/vst/vstbus.h"

namespace MrvTest {

using namespace Steinberg;
using namespace Steinberg::Vst;

tresult PLUGIN_API SplitProcessor::queryInterface(const TUID iid, void** obj)
{
    if (FUnknownPrivate::iidEqual(iid, IAudioProcessor::iid) || FUnknownPrivate::iidEqual(iid, FUnknown::iid)) {
        addRef();
        *obj = static_cast<IAudioProcessor*>(this);
        return kResultOk;
    }
    if (FUnknownPrivate::iidEqual(iid, IComponent::iid))
        Trace("split.processor refused IComponent");
    *obj = nullptr;
    return kNoInterface;
}

tresult PLUGIN_API SplitProcessor::setBusArrangements(SpeakerArrangement*, int32, SpeakerArrangement*, int32)
{
    return kResultFalse;
}

tresult PLUGIN_API SplitProcessor::getBusArrangement(BusDirection, int32 index, SpeakerArrangement& arr)
{
    if (index != 0)
        return kInvalidArgument;
    arr = SpeakerArr::kStereo;
    return kResultOk;
}

tresult PLUGIN_API SplitProcessor::canProcessSampleSize(int32 symbolicSampleSize)
{
    return symbolicSampleSize == kSample32 ? kResultOk : kResultFalse;
}

tresult PLUGIN_API SplitProcessor::setupProcessing(ProcessSetup& setup)
{
    Trace("split.setupProcessing rate=%.1f", setup.sampleRate);
    mShared.hostCheck.Setup(setup);
    return kResultOk;
}

tresult PLUGIN_API SplitProcessor::setProcessing(TBool state)
{
    Trace("split.setProcessing %d", state ? 1 : 0);
    return kResultOk;
}

tresult PLUGIN_API SplitProcessor::process(ProcessData& data)
{
    mShared.hostCheck.BeforeProcess(data);
    if (IParameterChanges* changes = data.inputParameterChanges) {
        for (int32 i = 0; i < changes->getParameterCount(); ++i) {
            IParamValueQueue* queue = changes->getParameterData(i);
            int32 offset = 0;
            ParamValue value = 0;
            if (queue && queue->getParameterId() == kEffectGain && queue->getPointCount() > 0 &&
                queue->getPoint(queue->getPointCount() - 1, offset, value) == kResultOk)
                mShared.gain = value;
        }
    }
    if (data.numInputs < 1 || data.numOutputs < 1)
        return kResultOk;
    const float gain = static_cast<float>(mShared.gain.load(std::memory_order_relaxed));
    for (int32 c = 0; c < 2; ++c) {
        const float* in = data.inputs[0].channelBuffers32[c];
        float* out = data.outputs[0].channelBuffers32[c];
        if (!in || !out)
            continue;
        for (int32 s = 0; s < data.numSamples; ++s)
            out[s] = in[s] * gain;
    }
    return kResultOk;
}

SplitEffect::SplitEffect() { setControllerClass(kEffectControllerUID); }

FUnknown* SplitEffect::create() { return static_cast<IComponent*>(new SplitEffect); }

tresult PLUGIN_API SplitEffect::queryInterface(const TUID iid, void** obj)
{
    if (FUnknownPrivate::iidEqual(iid, IAudioProcessor::iid)) {
        // Made on the first request, as DPF does, and kept for the next.
        if (!mProcessor)
            mProcessor = owned(new SplitProcessor(mShared));
        return mProcessor->queryInterface(iid, obj);
    }
    return Component::queryInterface(iid, obj);
}

tresult PLUGIN_API SplitEffect::initialize(FUnknown* context)
{
    Trace("split.initialize");
    const tresult result = Component::initialize(context);
    if (result != kResultOk)
        return result;
    audioInputs.push_back(IPtr<Bus>(new AudioBus(STR16("In"), kMain, BusInfo::kDefaultActive, SpeakerArr::kStereo), false));
    audioOutputs.push_back(IPtr<Bus>(new AudioBus(STR16("Out"), kMain, BusInfo::kDefaultActive, SpeakerArr::kStereo), false));
    return kResultOk;
}

tresult PLUGIN_API SplitEffect::terminate()
{
    Trace("split.terminate");
    return Component::terminate();
}

tresult PLUGIN_API SplitEffect::setActive(TBool state)
{
    Trace("split.setActive %d", state ? 1 : 0);
    mShared.hostCheck.Active(state != 0);
    return Component::setActive(state);
}

tresult PLUGIN_API SplitEffect::setState(IBStream* state)
{
    double gain = 0;
    int32 bytesRead = 0;
    if (!state || state->read(&gain, sizeof(gain), &bytesRead) != kResultOk || bytesRead != sizeof(gain))
        return kResultFalse;
    mShared.gain = gain;
    Trace("split.setState gain=%.6f", gain);
    return kResultOk;
}

tresult PLUGIN_API SplitEffect::getState(IBStream* state)
{
    if (!state)
        return kInvalidArgument;
    double gain = mShared.gain.load(std::memory_order_relaxed);
    return state->write(&gain, sizeof(gain), nullptr);
}

}  // namespace MrvTest
