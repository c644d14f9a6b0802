#include "DeclaringPlugin.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>

#include "../common/CTrace.h"
#include "../common/LastParameterValue.h"
#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/base/ustring.h"
#include "pluginterfaces/vst/ivstparameterchanges.h"
#include "public.sdk/source/vst/vstbus.h"

namespace MrvTest {

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
int32 LatencyOf(double value) { return static_cast<int32>(std::lround(std::clamp(value, 0.0, 1.0) * kMaxLatency)); }

IPtr<Bus> NewAudioBus(const char* name, BusType type, int32 flags, SpeakerArrangement arrangement)
{
    UString128 title;
    title.fromAscii(name);
    return IPtr<Bus>(new AudioBus(title, type, flags, arrangement), false);
}
}  // namespace

FUnknown* DeclaringPlugin::create() { return static_cast<IAudioProcessor*>(new DeclaringPlugin); }

tresult PLUGIN_API DeclaringPlugin::initialize(FUnknown* context)
{
    const tresult result = Component::initialize(context);
    if (result != kResultOk)
        return result;
    if (kInstrumentShape) {
        eventInputs.push_back(IPtr<Bus>(new EventBus(STR16("MIDI In"), kMain, BusInfo::kDefaultActive, 16), false));
        audioOutputs.push_back(NewAudioBus("Main", kMain, BusInfo::kDefaultActive, SpeakerArr::kStereo));
        char name[32];
        for (int i = 1; i <= kAuxStereoBuses; ++i) {
            std::snprintf(name, sizeof name, "Aux %d", i);
            audioOutputs.push_back(NewAudioBus(name, kAux, 0, SpeakerArr::kStereo));
        }
        for (int i = 1; i <= kAuxMonoBuses; ++i) {
            std::snprintf(name, sizeof name, "Mono %d", i);
            audioOutputs.push_back(NewAudioBus(name, kAux, 0, SpeakerArr::kMono));
        }
    } else {
        audioInputs.push_back(NewAudioBus("In", kMain, BusInfo::kDefaultActive, SpeakerArr::kStereo));
        audioOutputs.push_back(NewAudioBus("Out", kMain, BusInfo::kDefaultActive, SpeakerArr::kStereo));
    }
    for (auto& ring : mRing)
        ring.assign(kMaxLatency + 1, 0.0f);
    return kResultOk;
}

tresult PLUGIN_API DeclaringPlugin::activateBus(MediaType type, BusDirection dir, int32 index, TBool state)
{
    if (type == kAudio)
        Trace("declaring.activateBus %s %d %d", dir == kInput ? "in" : "out", index, state ? 1 : 0);
    return Component::activateBus(type, dir, index, state);
}

tresult PLUGIN_API DeclaringPlugin::setActive(TBool state)
{
    Trace("declaring.setActive %d", state ? 1 : 0);
    mHostCheck.Active(state != 0);
    if (state) {
        for (auto& ring : mRing)
            std::fill(ring.begin(), ring.end(), 0.0f);
    }
    return Component::setActive(state);
}

tresult PLUGIN_API DeclaringPlugin::setState(IBStream* state)
{
    double value = 0;
    int32 bytesRead = 0;
    if (!state || state->read(&value, sizeof(value), &bytesRead) != kResultOk || bytesRead != sizeof(value))
        return kResultFalse;
    SetLatencyValue(value);
    return kResultOk;
}

tresult PLUGIN_API DeclaringPlugin::getState(IBStream* state)
{
    if (!state)
        return kInvalidArgument;
    double value = mLatencyValue.load();
    return state->write(&value, sizeof(value), nullptr);
}

tresult PLUGIN_API DeclaringPlugin::getBusArrangement(BusDirection dir, int32 index, SpeakerArrangement& arr)
{
    BusList* list = getBusList(kAudio, dir);
    if (!list || index < 0 || index >= static_cast<int32>(list->size()))
        return kInvalidArgument;
    arr = static_cast<AudioBus*>(list->at(static_cast<size_t>(index)).get())->getArrangement();
    return kResultOk;
}

uint32 PLUGIN_API DeclaringPlugin::getLatencySamples()
{
    const int32 latency = kInstrumentShape ? 0 : LatencyOf(mLatencyValue.load());
    Trace("declaring.getLatencySamples %d", latency);
    return static_cast<uint32>(latency);
}

uint32 PLUGIN_API DeclaringPlugin::getTailSamples()
{
    if (kInstrumentShape)
        return kInfiniteTail;
    return static_cast<uint32>(std::lround(kEffectTailSeconds * mSampleRate));
}

tresult PLUGIN_API DeclaringPlugin::setupProcessing(ProcessSetup& setup)
{
    Trace("declaring.setupProcessing mode=%d rate=%.1f", setup.processMode, setup.sampleRate);
    mHostCheck.Setup(setup);
    if (setup.sampleRate > 0)
        mSampleRate = setup.sampleRate;
    return kResultOk;
}

tresult PLUGIN_API DeclaringPlugin::process(ProcessData& data)
{
    mHostCheck.BeforeProcess(data);
    ParamValue value = 0;
    if (LastParameterValue(data.inputParameterChanges, kLatencyParam, value))
        mLatencyValue = value;
    if (kInstrumentShape)
        WriteLevels(data);
    else
        Delay(data);
    return kResultOk;
}

// The input, exactly as late as the latency parameter says.
void DeclaringPlugin::Delay(ProcessData& data)
{
    if (data.numInputs < 1 || data.numOutputs < 1 || data.inputs[0].numChannels < 2 || data.outputs[0].numChannels < 2)
        return;
    const size_t size = mRing[0].size();
    const size_t delay = static_cast<size_t>(LatencyOf(mLatencyValue.load()));
    for (int32 c = 0; c < 2; ++c) {
        const float* in = data.inputs[0].channelBuffers32[c];
        float* out = data.outputs[0].channelBuffers32[c];
        if (!in || !out)
            return;
    }
    size_t write = mWrite;
    for (int32 s = 0; s < data.numSamples; ++s) {
        const size_t read = (write + size - delay) % size;
        for (int32 c = 0; c < 2; ++c) {
            mRing[c][write] = data.inputs[0].channelBuffers32[c][s];
            data.outputs[0].channelBuffers32[c][s] = mRing[c][read];
        }
        write = (write + 1) % size;
    }
    mWrite = write;
}

// Each channel of each bus it was given buffers for, at its own level.
void DeclaringPlugin::WriteLevels(ProcessData& data)
{
    for (int32 bus = 0; bus < data.numOutputs; ++bus) {
        AudioBusBuffers& buffers = data.outputs[bus];
        for (int32 c = 0; c < buffers.numChannels; ++c) {
            float* out = buffers.channelBuffers32 ? buffers.channelBuffers32[c] : nullptr;
            if (out)
                std::fill(out, out + data.numSamples, LevelOf(bus, c));
        }
        buffers.silenceFlags = 0;
    }
}

tresult PLUGIN_API DeclaringPlugin::getParameterInfo(int32 index, ParameterInfo& info)
{
    if (index != 0)
        return kInvalidArgument;
    info = ParameterInfo();
    info.id = kLatencyParam;
    UString(info.title, 128).fromAscii("Latency");
    UString(info.units, 128).fromAscii("smp");
    info.defaultNormalizedValue = kDefaultLatencyValue;
    info.flags = ParameterInfo::kCanAutomate;
    return kResultOk;
}

tresult PLUGIN_API DeclaringPlugin::getParamStringByValue(ParamID id, ParamValue value, String128 string)
{
    if (id != kLatencyParam)
        return kInvalidArgument;
    char text[32];
    std::snprintf(text, sizeof text, "%d", LatencyOf(value));
    UString(string, 128).fromAscii(text);
    return kResultOk;
}

tresult PLUGIN_API DeclaringPlugin::getParamValueByString(ParamID id, TChar* string, ParamValue& value)
{
    if (id != kLatencyParam || !string)
        return kInvalidArgument;
    char text[128];
    UString(string, 128).toAscii(text, sizeof text);
    char* end = nullptr;
    const long samples = std::strtol(text, &end, 10);
    if (end == text || samples < 0 || samples > kMaxLatency)
        return kResultFalse;
    value = static_cast<double>(samples) / kMaxLatency;
    return kResultOk;
}

ParamValue PLUGIN_API DeclaringPlugin::getParamNormalized(ParamID id)
{
    return id == kLatencyParam ? mLatencyValue.load() : 0.0;
}

tresult PLUGIN_API DeclaringPlugin::setParamNormalized(ParamID id, ParamValue value)
{
    if (id != kLatencyParam)
        return kInvalidArgument;
    SetLatencyValue(value);
    return kResultOk;
}

// From the host's main thread: a new latency is announced as the VST 3
// documentation asks, and the host reads it once the component is on again.
void DeclaringPlugin::SetLatencyValue(ParamValue value)
{
    const int32 before = LatencyOf(mLatencyValue.exchange(value));
    if (!kInstrumentShape && LatencyOf(value) != before && mHandler) {
        Trace("declaring.restartComponent latency=%d", LatencyOf(value));
        mHandler->restartComponent(kLatencyChanged);
    }
}

tresult PLUGIN_API DeclaringPlugin::setComponentHandler(IComponentHandler* handler)
{
    mHandler = handler;
    return kResultOk;
}

}  // namespace MrvTest
