#include "SynthProcessor.h"

#include <algorithm>
#include <cmath>

#include "../common/CTrace.h"
#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/vst/ivstevents.h"
#include "pluginterfaces/vst/ivstparameterchanges.h"
#include "pluginterfaces/vst/ivstprocesscontext.h"
#include "public.sdk/source/vst/vstbus.h"

namespace MrvTest {

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
constexpr double kTwoPi = 6.283185307179586;
}

SynthProcessor::SynthProcessor()
{
    setControllerClass(kSynthControllerUID);
    mParams[kSynthVolume] = 0.8;
    mParams[kSynthBend] = 0.5;
    mParams[kSynthOctave] = 0.5;
}

FUnknown* SynthProcessor::create() { return static_cast<IAudioProcessor*>(new SynthProcessor); }

tresult PLUGIN_API SynthProcessor::initialize(FUnknown* context)
{
    Trace("proc.initialize");
    const tresult result = Component::initialize(context);
    if (result != kResultOk)
        return result;
    audioOutputs.push_back(IPtr<Bus>(new AudioBus(STR16("Main Out"), kMain, BusInfo::kDefaultActive, SpeakerArr::kStereo), false));
    audioOutputs.push_back(IPtr<Bus>(new AudioBus(STR16("Aux Out"), kAux, BusInfo::kDefaultActive, SpeakerArr::kStereo), false));
    eventInputs.push_back(IPtr<Bus>(new EventBus(STR16("MIDI In"), kMain, BusInfo::kDefaultActive, 16), false));
#ifdef MRV_STRICT
    eventOutputs.push_back(IPtr<Bus>(new EventBus(STR16("MIDI Out"), kMain, BusInfo::kDefaultActive, 16), false));
#endif
    return kResultOk;
}

tresult PLUGIN_API SynthProcessor::terminate()
{
    Trace("proc.terminate");
    return Component::terminate();
}

tresult PLUGIN_API SynthProcessor::connect(IConnectionPoint* other)
{
    Trace("proc.connect");
    return Component::connect(other);
}

tresult PLUGIN_API SynthProcessor::disconnect(IConnectionPoint* other)
{
    Trace("proc.disconnect");
    return Component::disconnect(other);
}

tresult PLUGIN_API SynthProcessor::activateBus(MediaType type, BusDirection dir, int32 index, TBool state)
{
    Trace("proc.activateBus type=%d dir=%d index=%d state=%d", type, dir, index, state ? 1 : 0);
    return Component::activateBus(type, dir, index, state);
}

tresult PLUGIN_API SynthProcessor::setActive(TBool state)
{
    Trace("proc.setActive %d", state ? 1 : 0);
    mHostCheck.Active(state != 0);
    return Component::setActive(state);
}

tresult PLUGIN_API SynthProcessor::setState(IBStream* state)
{
    int32 version = 0;
    if (!state || state->read(&version, sizeof(version), nullptr) != kResultOk || version != kSynthStateVersion) {
        Trace("proc.setState refused");
        return kResultFalse;
    }
    std::array<double, kSynthParamCount> values{};
    int32 bytesRead = 0;
    if (state->read(values.data(), sizeof(values), &bytesRead) != kResultOk || bytesRead != sizeof(values)) {
        Trace("proc.setState refused");
        return kResultFalse;
    }
    for (size_t i = 0; i < values.size(); ++i)
        mParams[i].store(values[i], std::memory_order_relaxed);
    Trace("proc.setState volume=%.6f program=%.6f", mParams[kSynthVolume].load(), mParams[kSynthProgram].load());
    return kResultOk;
}

tresult PLUGIN_API SynthProcessor::getState(IBStream* state)
{
    Trace("proc.getState");
    if (!state)
        return kInvalidArgument;
    int32 version = kSynthStateVersion;
    state->write(&version, sizeof(version), nullptr);
    double values[kSynthParamCount];
    for (size_t i = 0; i < kSynthParamCount; ++i)
        values[i] = mParams[i].load(std::memory_order_relaxed);
    state->write(values, sizeof(values), nullptr);
    return kResultOk;
}

tresult PLUGIN_API SynthProcessor::setBusArrangements(SpeakerArrangement*, int32 numIns, SpeakerArrangement* outputs,
                                                      int32 numOuts)
{
    if (numIns != 0 || numOuts < 1 || outputs[0] != SpeakerArr::kStereo)
        return kResultFalse;
    return kResultOk;
}

tresult PLUGIN_API SynthProcessor::getBusArrangement(BusDirection dir, int32 index, SpeakerArrangement& arr)
{
    if (dir != kOutput || index < 0 || index > 1)
        return kInvalidArgument;
    arr = SpeakerArr::kStereo;
    return kResultOk;
}

tresult PLUGIN_API SynthProcessor::canProcessSampleSize(int32 symbolicSampleSize)
{
    return symbolicSampleSize == kSample32 ? kResultOk : kResultFalse;
}

tresult PLUGIN_API SynthProcessor::setupProcessing(ProcessSetup& setup)
{
    Trace("proc.setupProcessing mode=%d size=%d max=%d rate=%.1f", setup.processMode, setup.symbolicSampleSize,
          setup.maxSamplesPerBlock, setup.sampleRate);
    mSampleRate = setup.sampleRate > 0 ? setup.sampleRate : 44100.0;
    mHostCheck.Setup(setup);
    return kResultOk;
}

tresult PLUGIN_API SynthProcessor::setProcessing(TBool state)
{
    Trace("proc.setProcessing %d", state ? 1 : 0);
    return kResultOk;
}

void SynthProcessor::applyParameterChanges(IParameterChanges* changes)
{
    if (!changes)
        return;
    for (int32 i = 0; i < changes->getParameterCount(); ++i) {
        IParamValueQueue* queue = changes->getParameterData(i);
        if (!queue)
            continue;
        for (int32 p = 0; p < queue->getPointCount(); ++p) {
            int32 offset = 0;
            ParamValue value = 0;
            if (queue->getPoint(p, offset, value) != kResultOk)
                continue;
            Trace("proc.param id=%u value=%.6f offset=%d", queue->getParameterId(), value, offset);
            const ParamID index = queue->getParameterId() - kSynthIdBase;
            if (index < kSynthParamCount)
                mParams[index] = value;
        }
    }
}

void SynthProcessor::handleEvent(const Event& event)
{
    if (event.type == Event::kNoteOnEvent) {
        Trace("proc.noteOn ch=%d pitch=%d vel=%.6f offset=%d flags=%d id=%d", event.noteOn.channel,
              event.noteOn.pitch, event.noteOn.velocity, event.sampleOffset, event.flags, event.noteOn.noteId);
        for (Voice& voice : mVoices) {
            if (!voice.active) {
                voice = Voice{true, event.noteOn.pitch, event.noteOn.velocity, 0.0};
                break;
            }
        }
    } else if (event.type == Event::kNoteOffEvent) {
        Trace("proc.noteOff ch=%d pitch=%d vel=%.6f offset=%d", event.noteOff.channel, event.noteOff.pitch,
              event.noteOff.velocity, event.sampleOffset);
        for (Voice& voice : mVoices)
            if (voice.active && voice.pitch == event.noteOff.pitch)
                voice.active = false;
    } else if (event.type == Event::kPolyPressureEvent) {
        Trace("proc.polyPressure ch=%d pitch=%d pressure=%.6f offset=%d", event.polyPressure.channel,
              event.polyPressure.pitch, event.polyPressure.pressure, event.sampleOffset);
    }
}

// The strict build plays every note it receives back out an octave up.
void SynthProcessor::echoEvent(const Event& event, IEventList* out)
{
#ifdef MRV_STRICT
    if (!out || (event.type != Event::kNoteOnEvent && event.type != Event::kNoteOffEvent))
        return;
    Event echo = event;
    if (echo.type == Event::kNoteOnEvent)
        echo.noteOn.pitch = static_cast<int16>(echo.noteOn.pitch + 12);
    else
        echo.noteOff.pitch = static_cast<int16>(echo.noteOff.pitch + 12);
    out->addEvent(echo);
#else
    (void)event;
    (void)out;
#endif
}

float SynthProcessor::renderSample()
{
    const double bendSemitones = (mParams[kSynthBend] - 0.5) * 4.0 + 12.0 * (std::round(mParams[kSynthOctave] * 2.0) - 1.0);
    const double harmonic = mParams[kSynthProgram] * 0.5;
    double sum = 0.0;
    for (Voice& voice : mVoices) {
        if (!voice.active)
            continue;
        const double frequency = 440.0 * std::pow(2.0, (voice.pitch - 69 + bendSemitones) / 12.0);
        sum += voice.velocity * (std::sin(voice.phase) + harmonic * std::sin(2.0 * voice.phase));
        voice.phase += kTwoPi * frequency / mSampleRate;
        if (voice.phase > kTwoPi)
            voice.phase -= kTwoPi;
    }
    return static_cast<float>(sum * mParams[kSynthVolume] * 0.25);
}

tresult PLUGIN_API SynthProcessor::process(ProcessData& data)
{
    mHostCheck.BeforeProcess(data);
    applyParameterChanges(data.inputParameterChanges);
    if (ProcessContext* context = data.processContext) {
        Trace("proc.context state=0x%x rate=%.1f tempo=%.3f sig=%d/%d music=%.6f samples=%lld", context->state,
              context->sampleRate, context->tempo, context->timeSigNumerator, context->timeSigDenominator,
              context->projectTimeMusic, static_cast<long long>(context->projectTimeSamples));
    }
    const int32 eventCount = data.inputEvents ? data.inputEvents->getEventCount() : 0;
    Trace("proc.process samples=%d events=%d", data.numSamples, eventCount);

    float* left = nullptr;
    float* right = nullptr;
    if (data.numOutputs > 0 && data.outputs[0].numChannels >= 2) {
        left = data.outputs[0].channelBuffers32[0];
        right = data.outputs[0].channelBuffers32[1];
    }
    int32 nextEvent = 0;
    float peak = 0.0f;
    for (int32 s = 0; s < data.numSamples; ++s) {
        while (nextEvent < eventCount) {
            Event event{};
            if (data.inputEvents->getEvent(nextEvent, event) != kResultOk || event.sampleOffset > s)
                break;
            handleEvent(event);
            echoEvent(event, data.outputEvents);
            ++nextEvent;
        }
        // Bypassed, an instrument is silent; its voices play on unheard.
        const float rendered = renderSample();
        const float sample = mParams[kSynthBypass] >= 0.5 ? 0.0f : rendered;
        peak = std::max(peak, std::fabs(sample));
        if (left && right) {
            left[s] = sample;
            right[s] = sample;
        }
    }
    for (; nextEvent < eventCount; ++nextEvent) {
        Event event{};
        if (data.inputEvents->getEvent(nextEvent, event) == kResultOk)
            handleEvent(event);
    }
    if (data.outputParameterChanges && peak > 0.0f) {
        int32 index = 0;
        if (IParamValueQueue* queue = data.outputParameterChanges->addParameterData(SynthTag(kSynthPeak), index))
            queue->addPoint(0, std::min(1.0f, peak), index);
    }
    return kResultOk;
}

}  // namespace MrvTest
