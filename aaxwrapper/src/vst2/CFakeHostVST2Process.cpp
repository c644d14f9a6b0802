// The real-time side of the VST 2 fake host: transport, MIDI input and audio.
// Nothing here allocates or locks; log lines are filtered before formatting.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "AAX_IMIDINode.h"
#include "AAX_ITransport.h"
#include "S_Alg_Context.h"
#include "fakehost/OutputSilence.h"
#include "fakehost/PostedMidi.h"
#include "ThreadRole.h"
#include "logger/CLog.h"
#include "vst2/CFakeHostVST2.h"

namespace {
// 1/127, truncated so that only a full velocity gives 1.
constexpr double kVelocityScale = 0.007874016;

// A packet's data bytes keeping only the first `length` (at most 4), in
// one copy rather than a byte loop: this runs for every event.
void CopyDataBytes(const AAX_CMidiPacket& packet, uint32_t length, char (&to)[4])
{
    static constexpr uint32_t kKeep[5] = {0u, 0xFFu, 0xFFFFu, 0xFFFFFFu, 0xFFFFFFFFu};  // little-endian
    uint32_t bytes = 0;
    std::memcpy(&bytes, packet.mData, sizeof(bytes));
    bytes &= kKeep[length < 4 ? length : 4];
    std::memcpy(to, &bytes, sizeof(bytes));
}

// Every packet of the slice as a complete VstMidiEvent, as the VST 2
// documentation describes it, at most kMaxEventsPerBuffer; `ordered` is
// cleared when the stamps are not in time order.
template <bool kWholeBuffer>
VstInt32 FillEvents(const AAX_CMidiStream& stream, int32_t start, int32_t frames, bool lastSlice,
                    VstMidiEvent* records, VstEvent** slots, bool& ordered)
{
    const AAX_CMidiPacket* packet = stream.mBuffer;
    const AAX_CMidiPacket* const end =
        packet + (kWholeBuffer ? std::min<uint32_t>(stream.mBufferSize, CFakeHostVST2::kMaxEventsPerBuffer) : stream.mBufferSize);
    VstMidiEvent* event = records;
    VstMidiEvent* const full = records + CFakeHostVST2::kMaxEventsPerBuffer;
    VstInt32 previous = 0;
    bool inOrder = true;
    for (; packet < end; ++packet) {
        const int64_t offset = static_cast<int64_t>(packet->mTimestamp) - start;
        if (!kWholeBuffer) {
            // Late stamps belong to the last slice, as they would to an unsliced buffer.
            if (offset < 0 || (offset >= frames && !lastSlice))
                continue;
            if (event == full)
                break;
        }
        *event = VstMidiEvent{};
        event->type = kVstMidiType;
        event->byteSize = sizeof(VstMidiEvent);
        event->deltaFrames = static_cast<VstInt32>(offset);
        event->flags = packet->mIsImmediate != 0 ? kVstMidiEventIsRealtime : 0;
        CopyDataBytes(*packet, packet->mLength, event->midiData);
        inOrder &= event->deltaFrames >= previous;
        previous = event->deltaFrames;
        *slots++ = reinterpret_cast<VstEvent*>(event++);
    }
    ordered = inOrder;
    return static_cast<VstInt32>(event - records);
}

// Outside a buffer the effect gets the last values it could have asked for.
struct STimeInfoOwed {
    bool& stale;
    ~STimeInfoOwed() { stale = false; }
};
}  // namespace

void CFakeHostVST2::Process(S_Alg_Context* context)
{
    MV_REAL_TIME("CFakeHostVST2::Process");
    if (effect == nullptr || context == nullptr)
        return;
    if (IsStandard()) {
        ProcessStandard(context);
        return;
    }
    MV_LOG("process", kLogDebug, "VST2> Process Replacing...");
    ApplyContextRate(context);
    MarkTimeInfoStale(context, 0);
    STimeInfoOwed owed{mTimeStale};
    if (const AAX_CMidiStream* midi = PostedMidi(*context))
        PushInputEvents(*midi);
    if (effect->processReplacing == nullptr || context->mBufferLength == nullptr || context->mOutputs == nullptr)
        return;
    if (!mChannelsFit) {
        const int32_t frames = *context->mBufferLength;
        for (int c = 0; c < kHostOutputChannels && frames > 0; ++c)
            if (context->mOutputs[c] != nullptr)
                std::memset(context->mOutputs[c], 0, sizeof(float) * static_cast<size_t>(frames));
        return;
    }
    effect->processReplacing(effect, const_cast<float**>(context->mInputs), const_cast<float**>(context->mOutputs),
                             *context->mBufferLength);
}

void CFakeHostVST2::ApplyContextRate(S_Alg_Context* context)
{
    if (context->mSampleRate == nullptr)
        return;
    const double rate = static_cast<double>(*context->mSampleRate);
    // A NaN compares unequal to everything, so it always counts as a change.
    if (!(rate == timeInfo.sampleRate)) {
        timeInfo.sampleRate = rate;
        Dispatch(effMainsChanged, 0, 0);
        Dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(rate));
        Dispatch(effMainsChanged, 0, 1);
    }
}

void CFakeHostVST2::FillTimeInfo()
{
    mTimeStale = false;
    timeInfo.flags = kVstPpqPosValid | kVstTempoValid | kVstTimeSigValid;
    if (IsStandard())
        timeInfo.sampleRate = mSampleRate;
    AAX_IMIDINode* node = currentContext != nullptr ? currentContext->mMidiTransport : nullptr;
    AAX_ITransport* transport = node != nullptr ? node->GetTransport() : nullptr;
    if (transport == nullptr)
        return;

    int64_t sampleLocation = 0;
    transport->GetCurrentNativeSampleLocation(&sampleLocation);
    timeInfo.samplePos = static_cast<double>(sampleLocation + mTimeStart);

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
    // A slice starts later than the host's buffer (STANDARD only).
    if (mTimeStart > 0)
        timeInfo.ppqPos += static_cast<double>(mTimeStart) / mSampleRate * tempo / 60.0;

    bool playing = false;
    transport->IsTransportPlaying(&playing);
    if (playing)
        timeInfo.flags |= kVstTransportPlaying;
}

void CFakeHostVST2::PushInputEvents(const AAX_CMidiStream& stream)
{
    if (midiEvent == nullptr)
        return;
    for (uint32_t i = 0; i < stream.mBufferSize; ++i) {
        const AAX_CMidiPacket& packet = stream.mBuffer[i];
        MV_LOG("midi", kLogError, "VST2 > Push Input Event... NdNode = ", static_cast<const void*>(&stream));

        events.numEvents = 1;
        events.events[0] = reinterpret_cast<VstEvent*>(midiEvent);
        midiEvent->type = kVstMidiType;
        // The record is reused, so the flag stays once an immediate packet passed.
        if (packet.mIsImmediate != 0)
            midiEvent->flags |= kVstMidiEventIsRealtime;
        midiEvent->byteSize = static_cast<VstInt32>(packet.mLength);
        CopyDataBytes(packet, 4, midiEvent->midiData);
        midiEvent->noteOffset = packet.mData[1];
        midiEvent->noteOffVelocity = static_cast<char>(static_cast<int>(packet.mData[2] * kVelocityScale));
        midiEvent->deltaFrames = static_cast<VstInt32>(packet.mTimestamp);
        Dispatch(effProcessEvents, 0, 0, &events);
    }
}

// STANDARD: the rate is never changed from here (the main thread does it, see
// ApplyPendingSettings); buffers longer than the announced block size go to
// the effect in slices.
void CFakeHostVST2::ProcessStandard(S_Alg_Context* context)
{
    if (!mGate.TryEnter()) {
        SilenceAllOutputs(*context);
        return;
    }
    Morvane::CProcessGateLeave leave(mGate);  // also when the plug-in throws
    MV_LOG("process", kLogDebug, "VST2> Process Replacing...");
    if (context->mSampleRate != nullptr) {
        const double rate = static_cast<double>(*context->mSampleRate);
        if (rate > 0.0 && rate != mSampleRate)
            mPendingRate.store(rate);
    }
    const int32_t frames = context->mBufferLength != nullptr ? *context->mBufferLength : 0;
    const bool channelsMade = mChannelsFit || !mWideOutputs.empty();
    if (!channelsMade || effect->processReplacing == nullptr || context->mOutputs == nullptr) {
        if (!channelsMade)
            SilenceAllOutputs(*context);
    } else if (frames <= kStandardMaxBlock) {
        // The whole buffer in one call, as ProcessSlice would do it for a
        // first and last slice, written out: this is every buffer's path.
        MarkTimeInfoStale(context, 0);
        STimeInfoOwed owed{mTimeStale};
        if (const AAX_CMidiStream* midi = PostedMidi(*context))
            PushSliceEvents(*midi, 0, frames, true);
        float** inputs = const_cast<float**>(context->mInputs);
        float** outputs = const_cast<float**>(context->mOutputs);
        if (!mChannelsFit)
            PointWideChannels(context, 0, frames, inputs, outputs);
        if (frames > 0)
            effect->processReplacing(effect, inputs, outputs, frames);
    } else {
        for (int32_t start = 0; start < frames; start += kStandardMaxBlock)
            ProcessSlice(context, start, std::min(kStandardMaxBlock, frames - start));
    }
}

void CFakeHostVST2::ProcessSlice(S_Alg_Context* context, int32_t start, int32_t frames)
{
    const int32_t total = context->mBufferLength != nullptr ? *context->mBufferLength : 0;
    MarkTimeInfoStale(context, start);
    STimeInfoOwed owed{mTimeStale};
    if (const AAX_CMidiStream* midi = PostedMidi(*context))
        PushSliceEvents(*midi, start, frames, start + frames >= total);
    float** inputs = const_cast<float**>(context->mInputs);
    float** outputs = const_cast<float**>(context->mOutputs);
    if (start > 0) {
        for (int c = 0; c < kHostInputChannels; ++c)
            mSliceInputs[c] = inputs != nullptr && inputs[c] != nullptr ? inputs[c] + start : nullptr;
        for (int c = 0; c < kHostOutputChannels; ++c)
            mSliceOutputs[c] = outputs[c] != nullptr ? outputs[c] + start : nullptr;
        inputs = inputs != nullptr ? mSliceInputs : nullptr;
        outputs = mSliceOutputs;
    }
    if (!mChannelsFit)
        PointWideChannels(context, start, frames, inputs, outputs);
    if (frames > 0)
        effect->processReplacing(effect, inputs, outputs, frames);
}

void CFakeHostVST2::PointWideChannels(S_Alg_Context* context, int32_t start, int32_t frames, float**& inputs,
                                      float**& outputs)
{
    const size_t count = static_cast<size_t>(std::clamp(frames, 0, kStandardMaxBlock));
    const size_t hostInputs = std::min(mWideInputs.size(), static_cast<size_t>(kHostInputChannels));
    for (size_t c = 0; c < hostInputs; ++c)
        mWideInputs[c] = context->mInputs != nullptr && context->mInputs[c] != nullptr ? context->mInputs[c] + start
                                                                                       : nullptr;
    // A plug-in may have written into its inputs last time.
    for (size_t c = hostInputs; c < mWideInputs.size(); ++c)
        std::memset(mWideInputs[c], 0, sizeof(float) * count);
    const size_t hostOutputs = std::min(mWideOutputs.size(), static_cast<size_t>(kHostOutputChannels));
    for (size_t c = 0; c < hostOutputs; ++c)
        mWideOutputs[c] = context->mOutputs[c] != nullptr ? context->mOutputs[c] + start : nullptr;
    inputs = mWideInputs.data();
    outputs = mWideOutputs.data();
}

// STANDARD: every event of the slice in one list, in time order, each a
// complete VstMidiEvent as the VST 2 documentation describes it.
void CFakeHostVST2::PushSliceEvents(const AAX_CMidiStream& stream, int32_t start, int32_t frames, bool lastSlice)
{
    if (mEventRecords.empty())
        return;
    auto* list = reinterpret_cast<VstEvents*>(mEventList.data());
    VstEvent** const slots = list->events;
    bool ordered = true;
    // One slice for the whole buffer (the usual case): every stamp is in it.
    const VstInt32 count =
        start == 0 && lastSlice
            ? FillEvents<true>(stream, 0, frames, true, mEventRecords.data(), slots, ordered)
            : FillEvents<false>(stream, start, frames, lastSlice, mEventRecords.data(), slots, ordered);
    if (count == 0)
        return;
    if (!ordered) {
        // Insertion sort: stable (events of one time keep their order), and
        // it allocates nothing.
        for (VstInt32 i = 1; i < count; ++i) {
            VstEvent* moving = slots[i];
            VstInt32 j = i;
            for (; j > 0 && slots[j - 1]->deltaFrames > moving->deltaFrames; --j)
                slots[j] = slots[j - 1];
            slots[j] = moving;
        }
    }
    list->numEvents = count;
    list->reserved = 0;
    Dispatch(effProcessEvents, 0, 0, list);
}
