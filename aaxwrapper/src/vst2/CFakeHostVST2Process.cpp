// The real-time side of the VST 2 fake host: time info, MIDI input and audio,
// translated from the front end's process block. Nothing here allocates or
// locks; log lines are filtered before formatting.
#include <algorithm>
#include <cstddef>
#include <cstring>

#include "AAX_IMIDINode.h"
#include "fakehost/OutputSilence.h"
#include "logger/CLog.h"
#include "vst2/CFakeHostVST2.h"

namespace {
// 1/127, truncated so that only a full velocity gives 1.
constexpr double kVelocityScale = 0.007874016;

// A packet's data bytes keeping only the first `length` (at most 4), in
// one copy rather than a byte loop.
void CopyDataBytes(const AAX_CMidiPacket& packet, uint32_t length, char (&to)[4])
{
    static constexpr uint32_t kKeep[5] = {0u, 0xFFu, 0xFFFFu, 0xFFFFFFu, 0xFFFFFFFFu};  // little-endian
    uint32_t bytes = 0;
    std::memcpy(&bytes, packet.mData, sizeof(bytes));
    bytes &= kKeep[length < 4 ? length : 4];
    std::memcpy(to, &bytes, sizeof(bytes));
}

// Outside a buffer the effect gets the last values it could have asked for.
struct STimeInfoOwed {
    bool& stale;
    const CProcessBlock*& block;
    ~STimeInfoOwed()
    {
        stale = false;
        block = nullptr;
    }
};

// The record of one event as four 64-bit words, in VstMidiEvent's order:
// type and size, delta and flags, note length and offset (0), then the MIDI
// bytes the packet counts with detune, note-off velocity and the reserved
// bytes at 0. Written whole for every event, so the effect always gets a
// complete record.
static_assert(sizeof(VstMidiEvent) == 32, "VstMidiEvent is four 64-bit words");
static_assert(offsetof(VstMidiEvent, flags) == 12, "the flags follow deltaFrames");
constexpr uint64_t kTypeAndSize =
    static_cast<uint32_t>(kVstMidiType) | (uint64_t{sizeof(VstMidiEvent)} << 32);

inline void WriteEvent(VstMidiEvent* record, const AAX_CMidiPacket& packet, int32_t offset)
{
    // Only the bytes the packet counts.
    static constexpr uint32_t kKeep[5] = {0u, 0xFFu, 0xFFFFu, 0xFFFFFFu, 0xFFFFFFFFu};  // little-endian
    uint32_t bytes = 0;
    std::memcpy(&bytes, packet.mData, sizeof(bytes));
    bytes &= kKeep[std::min<uint32_t>(packet.mLength, 4)];
    const uint64_t delta = static_cast<uint32_t>(offset);  // and flags 0
    const uint64_t zero = 0;
    const uint64_t data = bytes;
    // Four stores straight into the record, no copy through the stack, then
    // the real-time flag into the low byte of the flags (little-endian).
    char* out = reinterpret_cast<char*>(record);
    std::memcpy(out, &kTypeAndSize, 8);
    std::memcpy(out + 8, &delta, 8);
    std::memcpy(out + 16, &zero, 8);
    std::memcpy(out + 24, &data, 8);
    out[offsetof(VstMidiEvent, flags)] = packet.mIsImmediate != 0 ? kVstMidiEventIsRealtime : 0;
}
}  // namespace

void CFakeHostVST2::DoProcess(const CProcessBlock& block)
{
    if (effect == nullptr)
        return;
    if (IsStandard()) {
        ProcessStandard(block);
        return;
    }
    MV_LOG("process", kLogDebug, "VST2> Process Replacing...");
    ApplyContextRate(block);
    BeginBlock(block);
    STimeInfoOwed owed{mTimeStale, mBlock};
    if (block.HasMidi())
        PushInputEvents(block);
    // A context without a length renders nothing.
    if (effect->processReplacing == nullptr || block.Outputs() == nullptr || block.Frames() == 0)
        return;
    if (!mChannelsFit) {
        SilenceAllOutputs(block);
        return;
    }
    effect->processReplacing(effect, const_cast<float**>(block.Inputs()), const_cast<float**>(block.Outputs()),
                             block.Frames());
}

void CFakeHostVST2::ApplyContextRate(const CProcessBlock& block)
{
    if (!block.HasContextRate())
        return;
    const double rate = block.ContextRate();
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
    if (mBlock == nullptr)
        return;
    const STransportSnapshot& transport = mBlock->Transport();
    if (!transport.present)
        return;
    // What failed reads as 0, as this host has always given it.
    timeInfo.samplePos = static_cast<double>(mBlock->SamplePosition());
    timeInfo.tempo = transport.tempo;
    timeInfo.timeSigNumerator = transport.numerator;
    timeInfo.timeSigDenominator = transport.denominator;
    // A slice starts later than the host's buffer (STANDARD only).
    timeInfo.ppqPos = mBlock->QuarterNotes(mSampleRate);
    if (transport.playing)
        timeInfo.flags |= kVstTransportPlaying;
}

// CLASSIC: one effProcessEvents per packet, through one reused record.
void CFakeHostVST2::PushInputEvents(const CProcessBlock& block)
{
    if (midiEvent == nullptr)
        return;
    for (const AAX_CMidiPacket* packet = block.MidiBegin(); packet < block.MidiEnd(); ++packet) {
        MV_LOG("midi", kLogError, "VST2 > Push Input Event... NdNode = ", static_cast<const void*>(packet));

        events.numEvents = 1;
        events.events[0] = reinterpret_cast<VstEvent*>(midiEvent);
        midiEvent->type = kVstMidiType;
        // The record is reused, so the flag stays once an immediate packet passed.
        if (packet->mIsImmediate != 0)
            midiEvent->flags |= kVstMidiEventIsRealtime;
        midiEvent->byteSize = static_cast<VstInt32>(packet->mLength);
        CopyDataBytes(*packet, 4, midiEvent->midiData);
        midiEvent->noteOffset = packet->mData[1];
        midiEvent->noteOffVelocity = static_cast<char>(static_cast<int>(packet->mData[2] * kVelocityScale));
        midiEvent->deltaFrames = static_cast<VstInt32>(packet->mTimestamp);
        Dispatch(effProcessEvents, 0, 0, &events);
    }
}

// STANDARD: the rate is never changed from here (the main thread does it, see
// ApplyPendingSettings); buffers longer than the announced block size go to
// the effect in slices.
void CFakeHostVST2::ProcessStandard(const CProcessBlock& block)
{
    if (!mGate.TryEnter()) {
        SilenceAllOutputs(block);
        return;
    }
    Morvane::CProcessGateLeave leave(mGate);  // also when the plug-in throws
    MV_LOG("process", kLogDebug, "VST2> Process Replacing...");
    if (block.HasContextRate()) {
        const double rate = block.ContextRate();
        if (rate != mSampleRate && rate > 0.0)  // the usual case fails the first test
            mPendingRate.store(rate);
    }
    const bool channelsMade = mChannelsFit || !mWideOutputs.empty();
    if (!channelsMade) {
        SilenceAllOutputs(block);
        return;
    }
    if (effect->processReplacing == nullptr || block.Outputs() == nullptr)
        return;
    ForEachSlice(block, kStandardMaxBlock, [this](const CProcessBlock& slice) { ProcessSlice(slice); });
}

void CFakeHostVST2::ProcessSlice(const CProcessBlock& slice)
{
    BeginBlock(slice);
    STimeInfoOwed owed{mTimeStale, mBlock};
    if (slice.HasMidi())
        PushSliceEvents(slice);
    float** inputs = const_cast<float**>(slice.Inputs());
    float** outputs = const_cast<float**>(slice.Outputs());
    if (!mChannelsFit)
        PointWideChannels(slice, inputs, outputs);
    if (slice.Frames() > 0)
        effect->processReplacing(effect, inputs, outputs, slice.Frames());
}

void CFakeHostVST2::PointWideChannels(const CProcessBlock& slice, float**& inputs, float**& outputs)
{
    const size_t count = static_cast<size_t>(std::clamp(slice.Frames(), 0, kStandardMaxBlock));
    const size_t hostInputs = std::min(mWideInputs.size(), static_cast<size_t>(kHostInputChannels));
    for (size_t c = 0; c < hostInputs; ++c)
        mWideInputs[c] = slice.Inputs() != nullptr ? slice.Inputs()[c] : nullptr;
    // A plug-in may have written into its inputs last time.
    for (size_t c = hostInputs; c < mWideInputs.size(); ++c)
        std::memset(mWideInputs[c], 0, sizeof(float) * count);
    const size_t hostOutputs = std::min(mWideOutputs.size(), static_cast<size_t>(kHostOutputChannels));
    for (size_t c = 0; c < hostOutputs; ++c)
        mWideOutputs[c] = slice.Outputs()[c];
    inputs = mWideInputs.data();
    outputs = mWideOutputs.data();
}

void CFakeHostVST2::MakeEventList()
{
    mEventRecords.assign(kMaxEventsPerBuffer, VstMidiEvent{});
    mEventList.assign(sizeof(VstEvents) + (kMaxEventsPerBuffer - 2) * sizeof(VstEvent*), 0);
    mSlotsSorted = true;  // so that the first buffer puts them in order
}

// STANDARD: every event of the slice in one list, in time order, each a
// complete VstMidiEvent as the VST 2 documentation describes it. This runs
// for every event, so it is written for the fewest instructions: the list's
// slots point at the records in order and are only rewritten after a buffer
// whose events needed sorting.
void CFakeHostVST2::PushSliceEvents(const CProcessBlock& slice)
{
    if (mEventRecords.empty())
        return;
    auto* list = reinterpret_cast<VstEvents*>(mEventList.data());
    VstEvent** const slots = list->events;
    VstMidiEvent* const records = mEventRecords.data();
    if (mSlotsSorted) {
        for (int i = 0; i < kMaxEventsPerBuffer; ++i)
            slots[i] = reinterpret_cast<VstEvent*>(records + i);
        mSlotsSorted = false;
    }
    int32_t previous = 0;
    bool ordered = true;
    VstInt32 count = 0;
    if (slice.IsWholeBuffer()) {
        // The usual case: every stamp is in this block.
        const AAX_CMidiPacket* packet = slice.MidiBegin();
        const ptrdiff_t total = std::min<ptrdiff_t>(slice.MidiEnd() - packet, kMaxEventsPerBuffer);
        VstMidiEvent* record = records;
        for (VstMidiEvent* const end = records + total; record != end; ++record, ++packet) {
            const int32_t offset = static_cast<int32_t>(packet->mTimestamp);
            WriteEvent(record, *packet, offset);
            ordered &= offset >= previous;
            previous = offset;
        }
        count = static_cast<VstInt32>(total);
    } else {
        slice.ForEachPacket([&](const AAX_CMidiPacket& packet, int32_t offset) {
            if (count == kMaxEventsPerBuffer)
                return;
            WriteEvent(records + count++, packet, offset);
            ordered &= offset >= previous;
            previous = offset;
        });
    }
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
        mSlotsSorted = true;
    }
    list->numEvents = count;
    list->reserved = 0;
    Dispatch(effProcessEvents, 0, 0, list);
}
