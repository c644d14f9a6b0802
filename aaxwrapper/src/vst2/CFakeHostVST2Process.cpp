// The real-time side of the VST 2 fake host: transport, MIDI input and audio.
// Nothing here allocates or locks; log lines are filtered before formatting.
#include <cmath>
#include <cstring>

#include "AAX_IMIDINode.h"
#include "AAX_ITransport.h"
#include "S_Alg_Context.h"
#include "logger/CLog.h"
#include "vst2/CFakeHostVST2.h"

namespace {
// 1/127, truncated so that only a full velocity gives 1.
constexpr double kVelocityScale = 0.007874016;
}  // namespace

void CFakeHostVST2::Process(S_Alg_Context* context)
{
    if (effect == nullptr || context == nullptr)
        return;
    currentContext = context;
    MV_LOG("process", kLogDebug, "VST2> Process Replacing...");
    RefreshTimeInfo(context);
    PushInputEvents(context);
    if (effect->processReplacing == nullptr || context->mBufferLength == nullptr || context->mOutputs == nullptr)
        return;
    if (!channelsFit) {
        const int32_t frames = *context->mBufferLength;
        for (int c = 0; c < kHostOutputChannels && frames > 0; ++c)
            if (context->mOutputs[c] != nullptr)
                std::memset(context->mOutputs[c], 0, sizeof(float) * static_cast<size_t>(frames));
        return;
    }
    effect->processReplacing(effect, const_cast<float**>(context->mInputs), const_cast<float**>(context->mOutputs),
                             *context->mBufferLength);
}

void CFakeHostVST2::RefreshTimeInfo(S_Alg_Context* context)
{
    timeInfo.flags = kVstPpqPosValid | kVstTempoValid | kVstTimeSigValid;

    if (context->mSampleRate != nullptr) {
        const double rate = static_cast<double>(*context->mSampleRate);
        // A NaN compares unequal to everything, so it always counts as a change.
        if (!(rate == timeInfo.sampleRate)) {
            timeInfo.sampleRate = rate;
            Dispatch(effMainsChanged, 0, 0);
            Dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
            Dispatch(effMainsChanged, 0, 1);
        }
    }

    AAX_ITransport* transport =
        context->mMidiTransport != nullptr ? context->mMidiTransport->GetTransport() : nullptr;
    if (transport == nullptr)
        return;

    int64_t sampleLocation = 0;
    transport->GetCurrentNativeSampleLocation(&sampleLocation);
    timeInfo.samplePos = static_cast<double>(sampleLocation);

    double tempo = 0.0;
    transport->GetCurrentTempo(&tempo);
    timeInfo.tempo = tempo;

    int32_t numerator = 0;
    int32_t denominator = 0;
    transport->GetCurrentMeter(&numerator, &denominator);
    timeInfo.timeSigNumerator = numerator;
    timeInfo.timeSigDenominator = denominator;

    int64_t ticks = 0;
    transport->GetCurrentTickPosition(&ticks);
    timeInfo.ppqPos = static_cast<double>(ticks) / static_cast<double>(kAAX_TicksPerQuarter);

    bool playing = false;
    transport->IsTransportPlaying(&playing);
    if (playing)
        timeInfo.flags |= kVstTransportPlaying;
}

void CFakeHostVST2::PushInputEvents(S_Alg_Context* context)
{
    AAX_IMIDINode* inputNode = context->mMidiIn;
    if (inputNode == nullptr || midiEvent == nullptr)
        return;
    AAX_CMidiStream* stream = inputNode->GetNodeBuffer();
    if (stream == nullptr || stream->mBuffer == nullptr || stream->mBufferSize == 0)
        return;

    for (uint32_t i = 0; i < stream->mBufferSize; ++i) {
        const AAX_CMidiPacket& packet = stream->mBuffer[i];
        MV_LOG("midi", kLogError, "VST2 > Push Input Event... NdNode = ", static_cast<const void*>(stream));

        events.numEvents = 1;
        events.events[0] = reinterpret_cast<VstEvent*>(midiEvent);
        midiEvent->type = kVstMidiType;
        // The record is reused, so the flag stays once an immediate packet passed.
        if (packet.mIsImmediate != 0)
            midiEvent->flags |= kVstMidiEventIsRealtime;
        midiEvent->byteSize = static_cast<VstInt32>(packet.mLength);
        for (int b = 0; b < 4; ++b)
            midiEvent->midiData[b] = static_cast<char>(packet.mData[b]);
        midiEvent->noteOffset = packet.mData[1];
        midiEvent->noteOffVelocity = static_cast<char>(static_cast<int>(packet.mData[2] * kVelocityScale));
        midiEvent->deltaFrames = static_cast<VstInt32>(packet.mTimestamp);
        Dispatch(effProcessEvents, 0, 0, &events);
    }
}
