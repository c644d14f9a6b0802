#include <cmath>
#include "ProbePlugin.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <limits>

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

namespace Vst2Probe {
namespace {

const char* const kParamNames[kNumParams] = {"Alpha", "Beta", "Gamma", "Delta"};
const char* const kProgramNames[kNumPrograms] = {"Probe A", "Probe B"};
const unsigned char kChunkMagic[4] = {'V', 'P', 'R', 'B'};
constexpr size_t kChunkCoreSize = 4 + 4 * kNumParams;

const char* OpcodeName(VstInt32 opcode)
{
    switch (opcode) {
    case effOpen: return "effOpen";
    case effClose: return "effClose";
    case effSetProgram: return "effSetProgram";
    case effGetProgram: return "effGetProgram";
    case effSetProgramName: return "effSetProgramName";
    case effGetProgramName: return "effGetProgramName";
    case effGetParamLabel: return "effGetParamLabel";
    case effGetParamDisplay: return "effGetParamDisplay";
    case effGetParamName: return "effGetParamName";
    case effSetSampleRate: return "effSetSampleRate";
    case effSetBlockSize: return "effSetBlockSize";
    case effMainsChanged: return "effMainsChanged";
    case effEditGetRect: return "effEditGetRect";
    case effEditOpen: return "effEditOpen";
    case effEditClose: return "effEditClose";
    case effEditIdle: return "effEditIdle";
    case effGetChunk: return "effGetChunk";
    case effSetChunk: return "effSetChunk";
    case effProcessEvents: return "effProcessEvents";
    case effGetProgramNameIndexed: return "effGetProgramNameIndexed";
    case effGetEffectName: return "effGetEffectName";
    case effGetVendorString: return "effGetVendorString";
    case effGetProductString: return "effGetProductString";
    case effGetVendorVersion: return "effGetVendorVersion";
    case effCanDo: return "effCanDo";
    default: return nullptr;
    }
}

void CopyText(void* destination, size_t size, const char* text)
{
    if (destination != nullptr)
        std::snprintf(static_cast<char*>(destination), size, "%s", text);
}

VstIntPtr DispatcherProc(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt)
{
    CProbe* probe = CProbe::From(effect);
    if (opcode == effClose) {
        probe->Recorder().Line("dispatch effClose index=%d value=%ld opt=%g", index, static_cast<long>(value),
                               static_cast<double>(opt));
        delete probe;
        return 1;
    }
    return probe->Dispatch(opcode, index, value, ptr, opt);
}

#if defined(__x86_64__)
bool FlushesToZero() { return (_mm_getcsr() & 0x8000u) != 0; }
bool DenormalsAreZero() { return (_mm_getcsr() & 0x0040u) != 0; }
#else
bool FlushesToZero() { return false; }
bool DenormalsAreZero() { return false; }
#endif

void ProcessReplacingProc(AEffect* effect, float** inputs, float** outputs, VstInt32 frames)
{
    CProbe::From(effect)->ProcessReplacing(inputs, outputs, frames);
}

void SetParameterProc(AEffect* effect, VstInt32 index, float value) { CProbe::From(effect)->SetParameter(index, value); }

float GetParameterProc(AEffect* effect, VstInt32 index) { return CProbe::From(effect)->GetParameter(index); }

}  // namespace

CProbe::CProbe(audioMasterCallback host, const char* entryName) : mHost(host)
{
    mEffect.magic = kEffectMagic;
    mEffect.dispatcher = &DispatcherProc;
    mEffect.setParameter = &SetParameterProc;
    mEffect.getParameter = &GetParameterProc;
    mEffect.processReplacing = &ProcessReplacingProc;
    // A declared count of its own, for hosts' handling of odd ones; programs
    // past its two have names that fill their 24 bytes, unterminated.
    mEffect.numPrograms = static_cast<VstInt32>(EnvInteger("VST2PROBE_PROGRAMS", kNumPrograms));
    // A plug-in with very many parameters, for set-up timing.
    mExtraParams.assign(static_cast<size_t>(std::clamp(EnvInteger("VST2PROBE_EXTRA_PARAMS", 0), 0L, 100000L)), 0.5f);
    mEffect.numParams = kNumParams + static_cast<VstInt32>(mExtraParams.size());
    mEffect.numInputs = kNumInputs;
    mEffect.numOutputs = static_cast<VstInt32>(EnvInteger("VST2PROBE_OUTPUTS", kNumOutputs));
    mEffect.flags = effFlagsHasEditor | effFlagsCanReplacing | effFlagsProgramChunks | effFlagsIsSynth;
    mEffect.ioRatio = 1.0f;
    mEffect.object = this;
    mEffect.uniqueID = kUniqueID;
    mEffect.version = static_cast<VstInt32>(EnvInteger("VST2PROBE_VERSION", 0x01020304));

    mRecorder.Line("entry %s", entryName);
    // What a plug-in typically asks before its host has adopted it.
    const VstIntPtr version = mHost(&mEffect, audioMasterVersion, 0, 0, nullptr, 0.0f);
    const VstIntPtr time = mHost(&mEffect, audioMasterGetTime, 0, 0, nullptr, 0.0f);
    char vendor[65] = {};
    const VstIntPtr vendorAnswer = mHost(&mEffect, audioMasterGetVendorString, 0, 0, vendor, 0.0f);
    const VstIntPtr idle = mHost(&mEffect, audioMasterIdle, 0, 0, nullptr, 0.0f);
    const VstIntPtr canDo = mHost(&mEffect, audioMasterCanDo, 0, 0, const_cast<char*>("sendVstEvents"), 0.0f);
    const VstIntPtr rate = mHost(&mEffect, audioMasterGetSampleRate, 0, 0, nullptr, 0.0f);
    mRecorder.Line("entry-host version=%ld time=%ld vendor=%ld:%s idle=%ld canDo=%ld rate=%ld",
                   static_cast<long>(version), static_cast<long>(time), static_cast<long>(vendorAnswer), vendor,
                   static_cast<long>(idle), static_cast<long>(canDo), static_cast<long>(rate));
}

VstIntPtr CProbe::Dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt)
{
    const char* name = OpcodeName(opcode);
    if (name != nullptr)
        mRecorder.Line("dispatch %s index=%d value=%ld opt=%g", name, index, static_cast<long>(value),
                       static_cast<double>(opt));
    else
        mRecorder.Line("dispatch %d index=%d value=%ld opt=%g", opcode, index, static_cast<long>(value),
                       static_cast<double>(opt));

    switch (opcode) {
    case effSetProgram:
        if (value >= 0 && value < kNumPrograms)
            mProgram = static_cast<int>(value);
        return 0;
    case effGetProgram: return mProgram;
    case effGetProgramName: CopyText(ptr, kVstMaxProgNameLen, kProgramNames[mProgram]); return 0;
    case effGetProgramNameIndexed:
        if (index >= kNumPrograms && index < mEffect.numPrograms && ptr != nullptr) {
            std::memset(ptr, 'N', kVstMaxProgNameLen);
            return 1;
        }
        if (index < 0 || index >= kNumPrograms)
            return 0;
        CopyText(ptr, kVstMaxProgNameLen, kProgramNames[index]);
        return 1;
    case effGetParamName:
        if (index >= 0 && index < kNumParams)
            CopyText(ptr, kVstMaxProgNameLen, kParamNames[index]);
        else if (index >= kNumParams && index < mEffect.numParams && ptr != nullptr)
            std::snprintf(static_cast<char*>(ptr), kVstMaxProgNameLen, "Extra %d", index - kNumParams);
        return 0;
    // Gamma is a choice of five modes and Delta a switch, as real plug-ins
    // show them: their own words, no unit.
    case effGetParamLabel: CopyText(ptr, kVstMaxParamStrLen, index == 2 || index == 3 ? "" : "u"); return 0;
    case effGetParamDisplay:
        if (index == 2 && ptr != nullptr)
            std::snprintf(static_cast<char*>(ptr), kVstMaxParamStrLen, "Mode %d",
                          static_cast<int>(std::lround(mParams[2].load() * 4.0f)));
        else if (index == 3 && ptr != nullptr)
            CopyText(ptr, kVstMaxParamStrLen, mParams[3].load() >= 0.5f ? "On" : "Off");
        else if (index >= 0 && index < kNumParams && ptr != nullptr)
            std::snprintf(static_cast<char*>(ptr), kVstMaxParamStrLen, "%.3f", static_cast<double>(mParams[index]));
        return 0;
    case effGetParameterProperties: return ParameterProperties(index, static_cast<VstParameterProperties*>(ptr));
    case effOpen:
        // A plug-in that gives up on the host by ending the process.
        if (EnvInteger("VST2PROBE_EXIT_ON_OPEN", 0) != 0)
            std::exit(1);
        return 0;
    case effEditGetRect:
        if (ptr == nullptr || EnvInteger("VST2PROBE_NO_RECT", 0) != 0)
            return 0;
        *static_cast<ERect**>(ptr) = &mRect;
        return 1;
    case effEditOpen:
        mRecorder.Line("editor-parent %s", ptr != nullptr ? "set" : "null");
#ifdef MRV_HAS_X11_EDITOR
        OpenX11Editor(ptr);
#endif
        return 1;
#ifdef MRV_HAS_X11_EDITOR
    case effEditIdle: mEditor.Idle(); return 0;
    case effEditClose: mEditor.Close(); return 0;
#endif
    case effGetChunk: return GetChunk(static_cast<void**>(ptr));
    case effSetChunk: return SetChunk(index, ptr, value);
    case effProcessEvents: return ProcessEvents(static_cast<const VstEvents*>(ptr));
    case effGetEffectName: CopyText(ptr, kVstMaxEffectNameLen, "VST2 Probe"); return 1;
    case effGetVendorString: CopyText(ptr, kVstMaxVendorStrLen, "Morvane Test"); return 1;
    case effGetProductString: CopyText(ptr, kVstMaxProductStrLen, "vst2probe"); return 1;
    case effGetVendorVersion: return mEffect.version;
    case effCanDo: return CanDo(static_cast<const char*>(ptr));
    case effGetVstVersion: return kVstVersion;
    default: return 0;
    }
}

VstIntPtr CProbe::CanDo(const char* what)
{
    if (what == nullptr)
        return 0;
    VstIntPtr answer = -1;
    if (std::strcmp(what, "receiveVstEvents") == 0 || std::strcmp(what, "receiveVstMidiEvent") == 0)
        answer = 1;
    else if (std::strcmp(what, "midiProgramNames") == 0)
        answer = 2;  // deliberately outside the defined answers
    mRecorder.Line("canDo %s -> %ld", what, static_cast<long>(answer));
    return answer;
}

VstIntPtr CProbe::ProcessEvents(const VstEvents* events)
{
    if (events == nullptr) {
        mRecorder.Line("events null");
        return 0;
    }
    mRecorder.Line("events num=%d", events->numEvents);
    for (VstInt32 i = 0; i < events->numEvents; ++i) {
        const VstEvent* event = events->events[i];
        if (event == nullptr)
            continue;
        const VstMidiEvent* midi = reinterpret_cast<const VstMidiEvent*>(event);
        const unsigned char* data = reinterpret_cast<const unsigned char*>(midi->midiData);
        mRecorder.Line("event type=%d byteSize=%d deltaFrames=%d flags=%d noteLength=%d noteOffset=%d "
                       "data=%02x %02x %02x %02x detune=%d noteOffVelocity=%d",
                       midi->type, midi->byteSize, midi->deltaFrames, midi->flags, midi->noteLength,
                       midi->noteOffset, data[0], data[1], data[2], data[3], midi->detune, midi->noteOffVelocity);
        if (midi->type != kVstMidiType || mActionCount >= kMaxActions)
            continue;
        const int status = data[0] & 0xF0;
        const bool control = status == 0xB0 && data[1] >= 20 && data[1] <= 25;
        if (control || status == 0x80 || status == 0x90)
            mActions[mActionCount++].event = *midi;
    }
    return 1;
}

void CProbe::RunActions(VstInt32 frames)
{
    VstMidiEvent echoes[kMaxActions];
    VstEvent* echoPointers[kMaxActions];
    int echoCount = 0;
    for (int i = 0; i < mActionCount; ++i) {
        const VstMidiEvent& event = mActions[i].event;
        const unsigned char* data = reinterpret_cast<const unsigned char*>(event.midiData);
        const int status = data[0] & 0xF0;
        if (status == 0x80 || status == 0x90) {
            echoes[echoCount] = event;
            echoes[echoCount].deltaFrames = event.deltaFrames < frames ? event.deltaFrames : 0;
            echoPointers[echoCount] = reinterpret_cast<VstEvent*>(&echoes[echoCount]);
            ++echoCount;
            continue;
        }
        const int value = data[2];
        if (data[1] <= 23) {
            const VstInt32 index = data[1] - 20;
            const float normalized = static_cast<float>(value) / 127.0f;
            mParams[index] = normalized;
            const VstIntPtr answer = mHost(&mEffect, audioMasterAutomate, index, 0, nullptr, normalized);
            mRecorder.Line("automate %d %g -> %ld", index, static_cast<double>(normalized), static_cast<long>(answer));
        } else {
            const VstInt32 width = data[1] == 24 ? 200 + value : 0;
            const VstIntPtr height = 100 + value;
            const VstIntPtr answer = mHost(&mEffect, audioMasterSizeWindow, width, height, nullptr, 0.0f);
            mRecorder.Line("sizeWindow %d %ld -> %ld", width, static_cast<long>(height), static_cast<long>(answer));
        }
    }
    mActionCount = 0;
    if (echoCount == 0)
        return;
    // One block of events, laid out as the interface allows: the pointer array
    // continues past the two declared slots.
    struct {
        VstInt32 numEvents;
        VstIntPtr reserved;
        VstEvent* events[kMaxActions];
    } storage{};
    storage.numEvents = echoCount;
    std::memcpy(storage.events, echoPointers, sizeof(VstEvent*) * static_cast<size_t>(echoCount));
    VstEvents* block = reinterpret_cast<VstEvents*>(&storage);
    const VstIntPtr answer = mHost(&mEffect, audioMasterProcessEvents, 0, 0, block, 0.0f);
    mRecorder.Line("sent %d events -> %ld", echoCount, static_cast<long>(answer));
}

void CProbe::ProcessReplacing(float** inputs, float** outputs, VstInt32 frames)
{
    const VstIntPtr timeAnswer =
        mHost(&mEffect, audioMasterGetTime, 0, kVstPpqPosValid | kVstTempoValid | kVstTimeSigValid, nullptr, 0.0f);
    const VstTimeInfo* time = reinterpret_cast<const VstTimeInfo*>(timeAnswer);
    if (time != nullptr)
        mRecorder.Line("time samplePos=%.0f sampleRate=%.0f ppqPos=%.6f tempo=%.3f sig=%d/%d flags=0x%x "
                       "barStartPos=%g nanoSeconds=%g",
                       time->samplePos, time->sampleRate, time->ppqPos, time->tempo, time->timeSigNumerator,
                       time->timeSigDenominator, static_cast<unsigned>(time->flags), time->barStartPos,
                       time->nanoSeconds);
    else
        mRecorder.Line("time null");
    mRecorder.Line("process frames=%d inputs=%s outputs=%s", frames, inputs != nullptr ? "set" : "null",
                   outputs != nullptr ? "set" : "null");
    // What the host set around this call: the floating-point mode and the
    // process level it answers.
    const VstIntPtr level = mHost(&mEffect, audioMasterGetCurrentProcessLevel, 0, 0, nullptr, 0.0f);
    mRecorder.Line("mode ftz=%d daz=%d level=%ld", FlushesToZero() ? 1 : 0, DenormalsAreZero() ? 1 : 0,
                   static_cast<long>(level));

    RunActions(frames);

    if (outputs == nullptr)
        return;
    for (int c = 0; c < mEffect.numOutputs; ++c) {
        if (outputs[c] == nullptr)
            continue;
        const float level = static_cast<float>(c + 1) / 64.0f * mParams[0];
        for (VstInt32 i = 0; i < frames; ++i)
            outputs[c][i] = level;
    }
    // A plug-in whose DSP blew up.
    if (mEffect.numOutputs > 0 && outputs[0] != nullptr && frames > 0 && EnvInteger("VST2PROBE_NAN_OUTPUT", 0) != 0)
        outputs[0][0] = std::numeric_limits<float>::quiet_NaN();
}

VstIntPtr CProbe::ParameterProperties(VstInt32 index, VstParameterProperties* properties)
{
    if (properties == nullptr || (index != 2 && index != 3))
        return 0;
    *properties = VstParameterProperties{};
    if (index == 3) {
        properties->flags = kVstParameterIsSwitch;
    } else {
        properties->flags = kVstParameterUsesIntegerMinMax;
        properties->minInteger = 0;
        properties->maxInteger = 4;
    }
    return 1;
}

void CProbe::SetParameter(VstInt32 index, float value)
{
    mRecorder.Line("setParameter %d %g", index, static_cast<double>(value));
    if (index >= 0 && index < kNumParams)
        mParams[index] = value;
    else if (index >= kNumParams && index < mEffect.numParams)
        mExtraParams[static_cast<size_t>(index - kNumParams)] = value;
}

float CProbe::GetParameter(VstInt32 index)
{
    if (index == 1 && EnvInteger("VST2PROBE_NAN_PARAMETER", 0) != 0)
        return std::numeric_limits<float>::quiet_NaN();
    if (index >= kNumParams && index < mEffect.numParams)
        return mExtraParams[static_cast<size_t>(index - kNumParams)];
    return index >= 0 && index < kNumParams ? mParams[index].load() : 0.0f;
}

VstIntPtr CProbe::GetChunk(void** data)
{
    if (data == nullptr)
        return 0;
    const long pad = EnvInteger("VST2PROBE_CHUNK_PAD", 0);
    const size_t size = kChunkCoreSize + static_cast<size_t>(pad > 0 ? pad : 0);
    // The padding is made once per size: a benchmark then measures the
    // host's copying, not this plug-in's.
    if (mChunk.size() != size) {
        mChunk.assign(size, 0);
        for (size_t i = kChunkCoreSize; i < mChunk.size(); ++i)
            mChunk[i] = static_cast<unsigned char>(i & 0xFF);
    }
    std::memcpy(mChunk.data(), kChunkMagic, 4);
    for (int i = 0; i < kNumParams; ++i) {
        const float value = mParams[i].load(std::memory_order_relaxed);
        std::memcpy(mChunk.data() + 4 + 4 * i, &value, 4);
    }
    *data = mChunk.data();
    return static_cast<VstIntPtr>(mChunk.size());
}

VstIntPtr CProbe::SetChunk(VstInt32 index, const void* data, VstIntPtr size)
{
    const unsigned char* bytes = static_cast<const unsigned char*>(data);
    char head[3 * 8 + 1] = {};
    for (int i = 0; bytes != nullptr && i < 8 && i < size; ++i)
        std::snprintf(head + 3 * i, 4, "%02x ", bytes[i]);
    const bool valid = bytes != nullptr && size >= static_cast<VstIntPtr>(kChunkCoreSize) &&
                       std::memcmp(bytes, kChunkMagic, 4) == 0;
    mRecorder.Line("setChunk index=%d size=%ld head=%s%s", index, static_cast<long>(size), head,
                   valid ? "restored" : "rejected");
    if (!valid)
        return 0;
    for (int i = 0; i < kNumParams; ++i) {
        float value;
        std::memcpy(&value, bytes + 4 + 4 * i, 4);
        mParams[i].store(value, std::memory_order_relaxed);
    }
    return 1;
}

AEffect* CreateProbe(audioMasterCallback host, const char* entryName)
{
    if (host == nullptr)
        return nullptr;
    return (new CProbe(host, entryName))->Effect();
}

#ifdef MRV_HAS_X11_EDITOR
void CProbe::OpenX11Editor(void* parent)
{
    MrvEditor::CX11TestEditor::SHandlers handlers;
    handlers.onButton = [this] {
        mRecorder.Line("editor-click button");
        mHost(&mEffect, audioMasterBeginEdit, 0, 0, nullptr, 0.0f);
        mHost(&mEffect, audioMasterAutomate, 0, 0, nullptr, 0.0f);
        mHost(&mEffect, audioMasterEndEdit, 0, 0, nullptr, 0.0f);
    };
    handlers.onGrow = [this] {
        mRect.bottom = static_cast<short>(mRect.bottom + MrvEditor::kGrowStep);
        mHost(&mEffect, audioMasterSizeWindow, mRect.right - mRect.left, mRect.bottom - mRect.top, nullptr, 0.0f);
        mEditor.Resize(mRect.right - mRect.left, mRect.bottom - mRect.top);
    };
    if (mEditor.Open(reinterpret_cast<uintptr_t>(parent), mRect.right - mRect.left, mRect.bottom - mRect.top,
                     std::move(handlers)))
        mRecorder.Line("editor-x11 open");
}
#endif

}  // namespace Vst2Probe
