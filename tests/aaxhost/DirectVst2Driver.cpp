#include "DirectVst2Driver.h"

#include <dlfcn.h>

#include <cstring>

#include "AAX_ITransport.h"
#include "TestSignal.h"
#include "vst2/VstInterface.h"

namespace AAXHostTest {

namespace {

// The block size a STANDARD host announces (the wrapper's kStandardMaxBlock).
constexpr VstInt32 kStandardBlock = 4096;

// Set only while a standard-host render runs: answers the rate as a number,
// also from inside the entry function.
thread_local bool tStandardHost = false;
thread_local double tRate = 0.0;

VstIntPtr HostCallback(AEffect* effect, VstInt32 opcode, VstInt32, VstIntPtr, void* ptr, float)
{
    if (tStandardHost) {
        if (opcode == audioMasterGetSampleRate)
            return static_cast<VstIntPtr>(tRate);
        if (opcode == audioMasterGetBlockSize)
            return kStandardBlock;
    }
    switch (opcode) {
    case audioMasterVersion: return kVstVersion;
    case audioMasterIdle: return 1;
    case audioMasterGetVendorString:
        if (ptr)
            std::strcpy(static_cast<char*>(ptr), "aaxhost direct");
        return 1;
    case audioMasterGetTime: return effect ? reinterpret_cast<VstIntPtr>(effect->user) : 0;  // our VstTimeInfo
    default: return 0;
    }
}

}  // namespace

bool RenderDirect(const SDirectRenderConfig& config, const AAXHost::CMidiSchedule& schedule,
                  SDirectRenderResult& result, std::string& error)
{
    void* lib = dlopen(config.libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!lib) {
        error = dlerror();
        return false;
    }
    tStandardHost = config.standardHost;
    tRate = config.sampleRate;
    auto entry = reinterpret_cast<VstPluginMainProc>(dlsym(lib, "VSTPluginMain"));
    if (!entry)
        entry = reinterpret_cast<VstPluginMainProc>(dlsym(lib, "main"));
    AEffect* effect = entry ? entry(HostCallback) : nullptr;
    if (!effect) {
        error = "no VST 2 effect from " + config.libraryPath;
        return false;
    }
    VstTimeInfo time{};
    effect->user = &time;
    auto dispatch = [effect](VstInt32 op, VstInt32 index, VstIntPtr value, void* ptr, float opt) {
        return effect->dispatcher(effect, op, index, value, ptr, opt);
    };
    dispatch(effOpen, 0, 0, nullptr, 0.0f);
    if (config.standardHost) {
        time.sampleRate = config.sampleRate;
        dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(config.sampleRate));
        dispatch(effSetBlockSize, 0, kStandardBlock, nullptr, 0.0f);
        dispatch(effMainsChanged, 0, 1, nullptr, 0.0f);
    } else {
        dispatch(effMainsChanged, 0, 1, nullptr, 0.0f);
        dispatch(effSetProgram, 0, 0, nullptr, 0.0f);
    }
    for (VstInt32 i = 0; i < effect->numParams; ++i)
        result.initialParameters.push_back(effect->getParameter(effect, i));

    for (const auto& p : config.parametersAtStart)
        effect->setParameter(effect, p.first, p.second);
    if (!config.chunkAtStart.empty()) {
        // Text chunks (amsynth's) are read with strlen: keep a terminator
        // after the bytes handed over.
        std::vector<char> chunk = config.chunkAtStart;
        chunk.push_back('\0');
        dispatch(effSetChunk, 0, static_cast<VstIntPtr>(config.chunkAtStart.size()), chunk.data(), 0.0f);
    }

    // As the CLASSIC wrapper does on its first buffer: suspend, set the rate, resume.
    if (!config.standardHost) {
        time.sampleRate = config.sampleRate;
        dispatch(effMainsChanged, 0, 0, nullptr, 0.0f);
        dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(config.sampleRate));
        dispatch(effMainsChanged, 0, 1, nullptr, 0.0f);
    }

    const size_t block = static_cast<size_t>(config.blockSize);
    std::vector<std::vector<float>> in(32, std::vector<float>(block)), out(34, std::vector<float>(block));
    std::vector<float*> inPtrs, outPtrs;
    for (auto& c : in)
        inPtrs.push_back(c.data());
    for (auto& c : out)
        outPtrs.push_back(c.data());
    result.outputs.assign(34, std::vector<float>(static_cast<size_t>(config.totalSamples)));

    std::vector<VstMidiEvent> midi(1024);
    std::vector<char> eventsStorage(sizeof(VstEvents) + 1024 * sizeof(VstEvent*));
    auto* events = reinterpret_cast<VstEvents*>(eventsStorage.data());

    for (const AAXHost::SBlock& b : AAXHost::PlanBlocks(config.totalSamples, config.blockSize)) {
        VstTimeInfo& t = time;
        t.flags = kVstPpqPosValid | kVstTempoValid | kVstTimeSigValid | kVstTransportPlaying;
        t.samplePos = static_cast<double>(b.start);
        t.tempo = config.tempo;
        t.timeSigNumerator = 4;
        t.timeSigDenominator = 4;
        const double quarters = static_cast<double>(b.start) / config.sampleRate * config.tempo / 60.0;
        t.ppqPos = static_cast<double>(std::llround(quarters * kAAX_TicksPerQuarter)) / kAAX_TicksPerQuarter;

        size_t first = 0, count = 0;
        schedule.EventsInBlock(b.start, b.frames, first, count);
        count = std::min<size_t>(count, midi.size());
        events->numEvents = static_cast<VstInt32>(count);
        for (size_t i = 0; i < count; ++i) {
            const AAXHost::SMidiEvent& e = schedule.Events()[first + i];
            VstMidiEvent& m = midi[i];
            m = VstMidiEvent{};
            m.type = kVstMidiType;
            m.byteSize = sizeof(VstMidiEvent);
            m.deltaFrames = static_cast<VstInt32>(e.sample - b.start);
            for (int k = 0; k < 4; ++k)
                m.midiData[k] = static_cast<char>(e.data[k]);
            events->events[i] = reinterpret_cast<VstEvent*>(&m);
            if (config.oneEventPerCall) {
                VstEvents one{};
                one.numEvents = 1;
                one.events[0] = events->events[i];
                dispatch(effProcessEvents, 0, 0, &one, 0.0f);
            }
        }
        if (count && !config.oneEventPerCall)
            dispatch(effProcessEvents, 0, 0, events, 0.0f);
        for (int c = 0; c < 32; ++c)
            for (int s = 0; s < b.frames; ++s)
                in[static_cast<size_t>(c)][static_cast<size_t>(s)] =
                    config.testInput ? AAXHost::TestInputSample(c, b.start + s, config.sampleRate) : 0.0f;
        for (auto& c : out)
            std::fill(c.begin(), c.end(), 0.0f);
        effect->processReplacing(effect, inPtrs.data(), outPtrs.data(), b.frames);
        for (size_t c = 0; c < 34; ++c)
            std::copy(out[c].begin(), out[c].begin() + b.frames, result.outputs[c].begin() + b.start);
    }
    void* chunk = nullptr;
    const VstIntPtr chunkSize = dispatch(effGetChunk, 0, 0, &chunk, 0.0f);
    if (chunk && chunkSize > 0)
        result.chunkAtEnd.assign(static_cast<char*>(chunk), static_cast<char*>(chunk) + chunkSize);
    dispatch(effMainsChanged, 0, 0, nullptr, 0.0f);
    dispatch(effClose, 0, 0, nullptr, 0.0f);
    tStandardHost = false;
    // The library stays loaded: plug-ins may leave threads or atexit handlers.
    return true;
}

}  // namespace AAXHostTest
