// The real-time side of the VST 3 fake host: the process block's transport
// into the process context, its MIDI into events and parameter changes, its
// channels into the VST 3 buses, one process call per slice.
#include "vst3/CFakeHostVST3.h"

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <cstddef>
#include <cstring>

#include "AAX_IMIDINode.h"
#include "AAX_ITransport.h"
#include "fakehost/OutputSilence.h"
#include "ThreadRole.h"
#include "CSingleton.h"
#include "logger/CLog.h"
#include "vst3/CVST3Loader.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
constexpr float kOneOver127 = 1.0f / 127.0f;
constexpr double kOneOver16383 = 1.0 / 16383.0;
}  // namespace

void CFakeHostVST3::DoProcess(const CProcessBlock& block)
{
    if (!mVst3Loader)
        return;
    CVST3Loader& loader = *mVst3Loader;
    const bool standard = IsStandard();
    if (standard && !loader.gate().TryEnter()) {
        SilenceAllOutputs(block);
        return;
    }
    Morvane::CProcessGateLeave leave(standard ? &loader.gate() : nullptr);  // also when the plug-in throws
    if (standard && block.HasContextRate()) {
        const double rate = block.ContextRate();
        if (rate != loader.getSampleRate() && rate > 0.0)  // the usual case fails the first test
            mPendingRate.store(rate);
    }
    // Never more samples per call than the processor was promised: longer
    // host buffers go through in slices.
    ForEachSlice(block, loader.getMaxBlock(), [this](const CProcessBlock& slice) { ProcessSlice(slice); });
}

void CFakeHostVST3::ProcessSlice(const CProcessBlock& slice)
{
    CVST3Loader& loader = *mVst3Loader;
    FillProcessContext(slice);
    if (slice.HasMidi())
        PushSliceEvents(slice, loader.getInputEvents(), loader.getInputChanges());
    loader.setProcessingBuffers(slice.Inputs(), slice.Outputs());
    loader.doProcess(slice.Frames());
    if (IsStandard())
        ForwardOutputEvents(slice);
}

void CFakeHostVST3::FillProcessContext(const CProcessBlock& slice)
{
    ProcessContext* pc = mVst3Loader->getProcessData().processContext;
    if (!pc)
        return;
    pc->state = ProcessContext::kProjectTimeMusicValid | ProcessContext::kTempoValid | ProcessContext::kTimeSigValid;
    if (slice.HasContextRate())
        pc->sampleRate = IsStandard() ? mVst3Loader->getSampleRate() : slice.ContextRate();
    const STransportSnapshot& transport = slice.Transport();
    if (!transport.present)
        return;
    // Only what the host answered replaces the last values.
    if (transport.hasTempo)
        pc->tempo = transport.tempo;
    if (transport.hasMeter) {
        pc->timeSigNumerator = transport.numerator;
        pc->timeSigDenominator = transport.denominator;
    }
    if (transport.hasTicks)
        pc->projectTimeMusic = slice.QuarterNotes(pc->sampleRate);
    if (transport.hasSamplePosition)
        pc->projectTimeSamples = slice.SamplePosition();
    if (transport.hasPlaying && transport.playing)
        pc->state |= ProcessContext::kPlaying;
}

// STANDARD: notes the processor sends out become AAX MIDI output packets.
void CFakeHostVST3::ForwardOutputEvents(const CProcessBlock& slice)
{
    Morvane::vst3::EventList* events = mVst3Loader->getOutputEvents();
    if (!events)
        return;
    const int32_t start = slice.Start();
    AAX_IMIDINode* out = slice.MidiOut();
    const int32 count = out ? events->getEventCount() : 0;
    for (int32 i = 0; i < count; ++i) {
        Event event{};
        if (events->getEvent(i, event) != kResultOk)
            continue;
        AAX_CMidiPacket packet{};
        packet.mTimestamp = static_cast<uint32_t>(std::max(0, event.sampleOffset + start));
        packet.mLength = 3;
        packet.mIsImmediate = 0;
        if (event.type == Event::kNoteOnEvent) {
            packet.mData[0] = static_cast<uint8_t>(0x90 | (event.noteOn.channel & 0x0F));
            packet.mData[1] = static_cast<uint8_t>(event.noteOn.pitch & 0x7F);
            packet.mData[2] = static_cast<uint8_t>(std::lround(std::clamp(event.noteOn.velocity, 0.0f, 1.0f) * 127.0f));
        } else if (event.type == Event::kNoteOffEvent) {
            packet.mData[0] = static_cast<uint8_t>(0x80 | (event.noteOff.channel & 0x0F));
            packet.mData[1] = static_cast<uint8_t>(event.noteOff.pitch & 0x7F);
            packet.mData[2] = static_cast<uint8_t>(std::lround(std::clamp(event.noteOff.velocity, 0.0f, 1.0f) * 127.0f));
        } else if (event.type == Event::kPolyPressureEvent) {
            packet.mData[0] = static_cast<uint8_t>(0xA0 | (event.polyPressure.channel & 0x0F));
            packet.mData[1] = static_cast<uint8_t>(event.polyPressure.pitch & 0x7F);
            packet.mData[2] =
                static_cast<uint8_t>(std::lround(std::clamp(event.polyPressure.pressure, 0.0f, 1.0f) * 127.0f));
        } else {
            continue;
        }
        out->PostMIDIPacket(&packet);
    }
    events->clear();
}

namespace {

// The VST 3 event of a note-on, note-off or poly-pressure message, at
// `offset` in the slice; false for every other message.
bool NoteEventOf(const AAX_CMidiPacket& packet, int32 offset, bool logMidi, Event& event)
{
    const uint8_t status = packet.mData[0] & 0xF0;
    const int16 channel = static_cast<int16>(packet.mData[0] & 0x0F);
    const uint8_t data1 = packet.mData[1];
    const uint8_t data2 = packet.mData[2];
    event = Event{};
    event.busIndex = 0;
    event.sampleOffset = offset;
    event.ppqPosition = 0;
    event.flags = packet.mIsImmediate ? Event::kIsLive : 0;
    switch (status) {
    case 0x90:
        if (logMidi)
            MV_LOG("midi", kLogDebug, "CHandleMidi::PushInputMidiEvents kNoteOn - pitch:", static_cast<int>(data1));
        event.type = Event::kNoteOnEvent;
        event.noteOn.channel = channel;
        event.noteOn.pitch = data1;
        event.noteOn.tuning = 0.0f;
        event.noteOn.velocity = data2 * kOneOver127;
        event.noteOn.length = 0;
        event.noteOn.noteId = -1;
        return true;
    case 0x80:
        if (logMidi)
            MV_LOG("midi", kLogDebug, "CHandleMidi::PushInputMidiEvents kNoteOff - pitch:", static_cast<int>(data1));
        event.type = Event::kNoteOffEvent;
        event.noteOff.channel = channel;
        event.noteOff.pitch = data1;
        event.noteOff.velocity = data2 * kOneOver127;
        event.noteOff.noteId = -1;
        event.noteOff.tuning = 0.0f;
        return true;
    case 0xA0:
        if (logMidi)
            MV_LOG("midi", kLogDebug, "CHandleMidi::PushInputMidiEvents kPolyPressure");
        event.type = Event::kPolyPressureEvent;
        event.polyPressure.channel = channel;
        event.polyPressure.pitch = data1 & 0x7F;
        event.polyPressure.pressure = (data2 & 0x7F) * kOneOver127;
        event.polyPressure.noteId = -1;
        return true;
    default:
        return false;
    }
}

// Every data byte's velocity as NoteEventOf computes it, the same bits, read
// rather than converted and multiplied for each note.
constexpr std::array<float, 256> MakeVelocities()
{
    std::array<float, 256> velocities{};
    for (size_t i = 0; i < velocities.size(); ++i)
        velocities[i] = static_cast<float>(i) * kOneOver127;
    return velocities;
}
constexpr std::array<float, 256> kVelocities = MakeVelocities();

// The event NoteEventOf makes of a note-on (0x9n) or note-off (0x8n) at the
// packet's own stamp, written as six 64-bit words: every byte of the record
// once, no clearing first. This runs for every note, so it is written for the
// fewest instructions.
static_assert(sizeof(Event) == 48 && offsetof(Event, noteOn) == 24 && offsetof(Event, flags) == 16,
              "the Event layout the six words are written for");
inline void WriteNote(Event& record, const AAX_CMidiPacket& packet)
{
    uint32_t bytes = 0;
    std::memcpy(&bytes, packet.mData, sizeof(bytes));
    // Bus 0 in the low half, the sample offset in the high half.
    const uint64_t busAndOffset = uint64_t{packet.mTimestamp} << 32;
    const uint64_t live = packet.mIsImmediate != 0 ? uint64_t{Event::kIsLive} : 0u;
    // channel (int16) then pitch (int16): the status byte's low nibble, data byte 1.
    const uint64_t channelPitch = (bytes & 0x0Fu) | ((bytes & 0xFF00u) << 8);
    uint32_t velocityBits = 0;
    std::memcpy(&velocityBits, &kVelocities[(bytes >> 16) & 0xFFu], sizeof(velocityBits));
    constexpr uint64_t kNoNoteId = 0xFFFFFFFFu;  // -1 in the low half
    // Stores straight into the record, no copy through the stack.
    char* const out = reinterpret_cast<char*>(&record);
    const auto put = [out](size_t at, uint64_t word) { std::memcpy(out + at, &word, sizeof(word)); };
    put(0, busAndOffset);
    put(8, 0);  // ppqPosition 0.0
    if ((bytes & 0x10u) != 0) {
        put(16, live | (uint64_t{Event::kNoteOnEvent} << 16));
        put(24, channelPitch);  // tuning 0
        put(32, velocityBits);  // length 0
        put(40, kNoNoteId);
    } else {
        put(16, live | (uint64_t{Event::kNoteOffEvent} << 16));
        put(24, channelPitch | (uint64_t{velocityBits} << 32));
        put(32, kNoNoteId);  // tuning 0
        put(40, 0);
    }
}

}  // namespace

void CFakeHostVST3::PushSliceEvents(const CProcessBlock& slice, Morvane::vst3::EventList* events,
                                    Morvane::vst3::ParameterChanges& changes)
{
    // The midi category's debug lines, tested once per block rather than per
    // event: what is recorded is the same.
    const bool logMidi = CSingleton<CLog>::getInstance()->isRecorded("midi", kLogDebug);
    if (events != nullptr && !logMidi && slice.IsWholeBuffer()) {
        PushWholeBufferEvents(slice, *events, changes);
        return;
    }
    slice.ForEachPacket([&](const AAX_CMidiPacket& packet, int32_t offset) {
        PushEvent(packet, static_cast<int32>(offset), logMidi, events, changes);
    });
}

void CFakeHostVST3::PushWholeBufferEvents(const CProcessBlock& block, Morvane::vst3::EventList& events,
                                          Morvane::vst3::ParameterChanges& changes)
{
    Event* next = events.freeBegin();
    Event* const end = events.freeEnd();
    const AAX_CMidiPacket* const last = block.MidiEnd();
    for (const AAX_CMidiPacket* packet = block.MidiBegin(); packet < last; ++packet) {
        if ((packet->mData[0] & 0xE0) == 0x80) {
            // With the list full there is nowhere to put it.
            if (next != end)
                WriteNote(*next++, *packet);
            continue;
        }
        events.commit(next);
        PushEvent(*packet, static_cast<int32>(packet->mTimestamp), false, &events, changes);
        next = events.freeBegin();
    }
    events.commit(next);
}

void CFakeHostVST3::PushEvent(const AAX_CMidiPacket& packet, int32 offset, bool logMidi,
                              Morvane::vst3::EventList* events, Morvane::vst3::ParameterChanges& changes)
{
    // Notes are written straight into the list's next record. Without an
    // event input bus, or with the list full, there is nowhere to put them.
    Event spare;
    Event* slot = events ? events->append() : nullptr;
    if (NoteEventOf(packet, offset, logMidi, slot ? *slot : spare))
        return;
    if (slot)
        events->dropLast();
    AAX_CMidiPacket rebased = packet;
    rebased.mTimestamp = static_cast<uint32_t>(offset);
    SMidiValue point;
    if (MidiParameterValue(rebased, logMidi, point))
        SendMidiValue(point, rebased.mTimestamp, logMidi, changes);
}

bool CFakeHostVST3::MidiParameterValue(const AAX_CMidiPacket& packet, bool logMidi, SMidiValue& out)
{
    CVST3Loader& loader = *mVst3Loader;
    const CVST3Loader::MidiControllerTable* table = loader.getMidiControllerTable();
    const uint8_t status = packet.mData[0] & 0xF0;
    const int16 channel = static_cast<int16>(packet.mData[0] & 0x0F);
    const uint8_t data1 = packet.mData[1];
    const uint8_t data2 = packet.mData[2];
    out = SMidiValue();
    switch (status) {
    case 0xB0:
        if (!table) {
            MV_LOG("midi", kLogError, "CHandleMidi::PushInputMidiEvents Input Controller Event - channel empty");
            return false;
        }
        // The data byte indexes the table unmasked; a corrupt byte above
        // the table is treated like an unmapped controller.
        out.parameter =
            data1 < CVST3Loader::kMidiControllerEntries ? (*table)[static_cast<size_t>(channel)][data1] : -1;
        if (out.parameter == -1) {
            MV_LOG("midi", kLogWarning, "CHandleMidi::PushInputMidiEvents Param not define");
            return false;
        }
        out.value = data2 * static_cast<double>(kOneOver127);
        out.logPoint = true;  // only controller messages report their point
        return true;
    case 0xC0:
        if (logMidi)
            MV_LOG("midi", kLogDebug, "CHandleMidi::PushInputMidiEvents kProgramChangeStatus");
        return ProgramChangeValue(channel, data1, out);
    case 0xD0:
        if (logMidi)
            MV_LOG("midi", kLogDebug, "CHandleMidi::PushInputMidiEvents kAfterTouchStatus");
        if (!table)
            return false;
        out.parameter = (*table)[static_cast<size_t>(channel)][CVST3Loader::kAfterTouchEntry];
        out.value = (data1 & 0x7F) * static_cast<double>(kOneOver127);
        return out.parameter != -1;
    case 0xE0:
        if (logMidi)
            MV_LOG("midi", kLogDebug, "CHandleMidi::PushInputMidiEvents kPitchBendStatus");
        if (!table)
            return false;
        out.parameter = (*table)[static_cast<size_t>(channel)][CVST3Loader::kPitchBendEntry];
        out.value = ((data2 & 0x7F) * 128 + (data1 & 0x7F)) * kOneOver16383;
        return out.parameter != -1;
    default:
        return false;
    }
}

bool CFakeHostVST3::ProgramChangeValue(int channel, uint8_t program, SMidiValue& out)
{
    CVST3Loader& loader = *mVst3Loader;
    IEditController* controller = loader.getController();
    out.parameter = loader.getProgramChangeParameter(channel);
    if (out.parameter == -1 || !controller)
        return false;
    int32 steps = 0;
    if (IsStandard()) {
        // Steps read at set-up: the controller is not asked from here.
        steps = loader.getProgramChangeSteps(channel);
    } else {
        MV_AUDIO_THREAD_BY_DESIGN("CLASSIC reads the program list's step count from the audio thread");
        ParameterInfo info{};
        // The identifier is used as an index, so keep it in range.
        if (out.parameter >= controller->getParameterCount() ||
            controller->getParameterInfo(out.parameter, info) != kResultOk)
            return false;
        steps = info.stepCount;
    }
    if (steps < 1 || program > steps)
        return false;
    out.value = static_cast<double>(program) / static_cast<double>(steps);
    return true;
}

void CFakeHostVST3::SendMidiValue(const SMidiValue& point, uint32_t timestamp, bool logMidi,
                                  Morvane::vst3::ParameterChanges& changes)
{
    // Straight into this block's input changes rather than through the main
    // thread's transfer queues, whose single writer is the main thread: the
    // processor sees the point in the same block.
    int32 queueIndex = 0;
    if (IParamValueQueue* queue = changes.addParameterData(static_cast<ParamID>(point.parameter), queueIndex)) {
        if (point.logPoint && logMidi)
            MV_LOG("midi", kLogDebug, "CHandleMidi::PushInputMidiEvents kController AddPoint index ", queueIndex,
                   " - value ", point.value, " timestamp ", timestamp);
        int32 pointIndex = 0;
        queue->addPoint(static_cast<int32>(timestamp), point.value, pointIndex);
    }
    // The controller's editor follows: STANDARD through the queue the timer
    // drains on the main thread, CLASSIC at once from this thread.
    if (IsStandard()) {
        mVst3Loader->queueForController(static_cast<ParamID>(point.parameter), point.value);
    } else if (IEditController* controller = mVst3Loader->getController()) {
        MV_AUDIO_THREAD_BY_DESIGN("CLASSIC mirrors MIDI-driven values to the controller from the audio thread");
        controller->setParamNormalized(static_cast<ParamID>(point.parameter), point.value);
    }
}
