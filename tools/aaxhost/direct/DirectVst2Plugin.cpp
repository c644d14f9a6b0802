// A VST 2 library opened with the wrapper's own loader and driven as a
// host drives it: events in effProcessEvents, then processReplacing.
#include <algorithm>
#include <cstring>

#include "GuardedChannels.h"
#include "DirectPlugin.h"
#include "vst2/CVST2PluginLoader.h"
#include "vst2/VstInterface.h"

namespace AAXDirect {

namespace {

constexpr size_t kMaxEvents = 512;
// Buffers a host gives even a plug-in that declares fewer channels: some
// write more than they declare.
constexpr int kMinInputBuffers = 32;
constexpr int kMinOutputBuffers = 34;

class CDirectVst2Plugin;
// The effect being created has no resvd1 yet; its host answers meanwhile.
thread_local CDirectVst2Plugin* tCreating = nullptr;

class CDirectVst2Plugin final : public IDirectPlugin {
public:
    ~CDirectVst2Plugin() override
    {
        if (mEffect == nullptr)
            return;
        Dispatch(effMainsChanged, 0, 0, nullptr);
        Dispatch(effClose, 0, 0, nullptr);
        // The library stays loaded: plug-ins may leave threads or atexit handlers.
    }

    bool Open(const SDirectSetup& setup, std::string& error) override
    {
        mSetup = setup;
        mEntry = mLoader.loadLibrary(setup.path.c_str());
        if (!mEntry) {
            error = mLoader.lastError();
            return false;
        }
        tCreating = this;
        AEffect* effect = mEntry(&CDirectVst2Plugin::Callback);
        tCreating = nullptr;
        if (effect == nullptr || effect->magic != kEffectMagic || effect->processReplacing == nullptr) {
            error = "no usable VST 2 effect from " + setup.path;
            return false;
        }
        effect->resvd1 = reinterpret_cast<VstIntPtr>(this);
        mEffect = effect;
        MakeBuffers();
        mEventRecords.resize(kMaxEvents);
        mEventStorage.assign(sizeof(VstEvents) + kMaxEvents * sizeof(VstEvent*), 0);
        Dispatch(effOpen, 0, 0, nullptr);
        if (setup.standard) {
            mTime.sampleRate = setup.sampleRate;
            Dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(setup.sampleRate));
            Dispatch(effSetBlockSize, 0, setup.maxBlock, nullptr);
            Dispatch(effMainsChanged, 0, 1, nullptr);
        } else {
            // CLASSIC: resumed and set to program 0 at creation; the rate
            // comes with the first buffer (Start).
            Dispatch(effMainsChanged, 0, 1, nullptr);
            Dispatch(effSetProgram, 0, 0, nullptr);
        }
        return true;
    }

    void Start() override
    {
        if (mSetup.standard || mStarted)
            return;
        mStarted = true;
        mTime.sampleRate = mSetup.sampleRate;
        Dispatch(effMainsChanged, 0, 0, nullptr);
        Dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(mSetup.sampleRate));
        Dispatch(effMainsChanged, 0, 1, nullptr);
    }

    void Reconfigure(double sampleRate, int maxBlock) override
    {
        mSetup.sampleRate = sampleRate;
        mSetup.maxBlock = maxBlock;
        mTime.sampleRate = sampleRate;
        Dispatch(effMainsChanged, 0, 0, nullptr);
        MakeBuffers();
        Dispatch(effSetSampleRate, 0, 0, nullptr, static_cast<float>(sampleRate));
        Dispatch(effSetBlockSize, 0, maxBlock, nullptr);
        Dispatch(effMainsChanged, 0, 1, nullptr);
    }

    int32_t Latency() override { return std::max<int32_t>(mEffect->initialDelay, 0); }

    int InputChannels() const override { return std::max(mEffect->numInputs, 0); }
    int OutputChannels() const override { return std::max(mEffect->numOutputs, 0); }
    float* Input(int channel) override { return mInputPtrs[static_cast<size_t>(channel)]; }
    const float* Output(int channel) const override { return mOutputPtrs[static_cast<size_t>(channel)]; }

    int ParameterCount() const override { return std::max(mEffect->numParams, 0); }
    std::string ParameterName(int index) override { return Text(effGetParamName, index); }
    std::string ParameterText(int index) override { return Text(effGetParamDisplay, index); }
    double GetParameter(int index) override { return mEffect->getParameter(mEffect, index); }
    void SetParameter(int index, double value) override
    {
        mEffect->setParameter(mEffect, index, static_cast<float>(value));
    }

    bool SaveState(std::vector<char>& state, std::string& error) override
    {
        state.clear();
        if (mEffect->flags & effFlagsProgramChunks) {
            void* chunk = nullptr;
            const VstIntPtr size = Dispatch(effGetChunk, 0, 0, &chunk);
            if (chunk == nullptr || size <= 0) {
                error = "effGetChunk gave no chunk";
                return false;
            }
            state.assign(static_cast<const char*>(chunk), static_cast<const char*>(chunk) + size);
            return true;
        }
        for (int i = 0; i < ParameterCount(); ++i) {
            const float value = mEffect->getParameter(mEffect, i);
            const char* bytes = reinterpret_cast<const char*>(&value);
            state.insert(state.end(), bytes, bytes + sizeof value);
        }
        return true;
    }

    bool LoadState(const std::vector<char>& state, std::string& error) override
    {
        if (mEffect->flags & effFlagsProgramChunks) {
            // Text chunks (amsynth's) are read with strlen: keep a terminator
            // after the bytes handed over.
            std::vector<char> chunk = state;
            chunk.push_back('\0');
            Dispatch(effSetChunk, 0, static_cast<VstIntPtr>(state.size()), chunk.data());
            return true;
        }
        const size_t count = std::min(state.size() / sizeof(float), static_cast<size_t>(ParameterCount()));
        if (count * sizeof(float) != state.size()) {
            error = "a parameter state of " + std::to_string(state.size()) + " bytes for " +
                    std::to_string(ParameterCount()) + " parameters";
            return false;
        }
        for (size_t i = 0; i < count; ++i) {
            float value;
            std::memcpy(&value, state.data() + i * sizeof value, sizeof value);
            mEffect->setParameter(mEffect, static_cast<VstInt32>(i), value);
        }
        return true;
    }

    void Prepare(const AAX_CMidiPacket* midi, size_t count, const SDirectTransport& transport, int) override
    {
        mTime.flags = kVstPpqPosValid | kVstTempoValid | kVstTimeSigValid | kVstTransportPlaying;
        mTime.samplePos = static_cast<double>(transport.samplePosition);
        mTime.ppqPos = transport.quarterNotes;
        mTime.tempo = transport.tempo;
        mTime.timeSigNumerator = 4;
        mTime.timeSigDenominator = 4;
        auto* list = reinterpret_cast<VstEvents*>(mEventStorage.data());
        count = std::min(count, kMaxEvents);
        for (size_t i = 0; i < count; ++i) {
            VstMidiEvent& event = mEventRecords[i];
            event = VstMidiEvent{};
            event.type = kVstMidiType;
            event.byteSize = sizeof(VstMidiEvent);
            event.deltaFrames = static_cast<VstInt32>(midi[i].mTimestamp);
            for (int b = 0; b < 4; ++b)
                event.midiData[b] = static_cast<char>(midi[i].mData[b]);
            list->events[i] = reinterpret_cast<VstEvent*>(&event);
        }
        list->numEvents = static_cast<VstInt32>(count);
        list->reserved = 0;
    }

    void Process(int frames) override
    {
        auto* list = reinterpret_cast<VstEvents*>(mEventStorage.data());
        if (list->numEvents > 0) {
            if (mSetup.oneEventPerCall) {
                for (VstInt32 i = 0; i < list->numEvents; ++i) {
                    VstEvents one{};
                    one.numEvents = 1;
                    one.events[0] = list->events[i];
                    mEffect->dispatcher(mEffect, effProcessEvents, 0, 0, &one, 0.0f);
                }
            } else {
                mEffect->dispatcher(mEffect, effProcessEvents, 0, 0, list, 0.0f);
            }
            list->numEvents = 0;
        }
        mEffect->processReplacing(mEffect, mInputPtrs.data(), mOutputPtrs.data(), frames);
    }

    int FirstOverrunOutput() const override { return mOutputs.FirstOverrun(); }

private:
    static VstIntPtr Callback(AEffect* effect, VstInt32 opcode, VstInt32, VstIntPtr, void* ptr, float)
    {
        CDirectVst2Plugin* host = effect != nullptr && effect->resvd1 != 0
                                      ? reinterpret_cast<CDirectVst2Plugin*>(effect->resvd1)
                                      : tCreating;
        switch (opcode) {
        case audioMasterVersion: return kVstVersion;
        case audioMasterIdle: return 1;
        case audioMasterGetVendorString:
            if (ptr == nullptr)
                return 0;
            std::strcpy(static_cast<char*>(ptr), "aaxhost direct");
            return 1;
        default: break;
        }
        return host != nullptr ? host->Answer(effect, opcode, ptr) : 0;
    }

    // A mainstream host's answers; CLASSIC answers neither rate nor block.
    VstIntPtr Answer(AEffect* effect, VstInt32 opcode, void* ptr)
    {
        switch (opcode) {
        case audioMasterGetTime: return reinterpret_cast<VstIntPtr>(&mTime);
        case audioMasterGetSampleRate: return mSetup.standard ? static_cast<VstIntPtr>(mSetup.sampleRate) : 0;
        case audioMasterGetBlockSize: return mSetup.standard ? mSetup.maxBlock : 0;
        case audioMasterCurrentId: return mSetup.standard && effect != nullptr ? effect->uniqueID : 0;
        case audioMasterCanDo: {
            static const char* const kCanDo[] = {"sendVstEvents", "sendVstMidiEvent", "sendVstTimeInfo",
                                                 "receiveVstEvents", "receiveVstMidiEvent"};
            for (const char* text : kCanDo)
                if (mSetup.standard && ptr != nullptr && std::strcmp(static_cast<const char*>(ptr), text) == 0)
                    return 1;
            return 0;
        }
        default: return 0;
        }
    }

    VstIntPtr Dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt = 0.0f)
    {
        return mEffect->dispatcher(mEffect, opcode, index, value, ptr, opt);
    }

    std::string Text(VstInt32 opcode, int index)
    {
        // Plug-ins write past the 8 characters the format allows; room for them.
        char text[256] = {};
        Dispatch(opcode, index, 0, text);
        text[sizeof text - 1] = '\0';
        return text;
    }

    void MakeBuffers()
    {
        const size_t frames = static_cast<size_t>(std::max(mSetup.maxBlock, 1));
        mInputPtrs = mInputs.Make(static_cast<size_t>(std::max(InputChannels(), kMinInputBuffers)), frames);
        mOutputPtrs = mOutputs.Make(static_cast<size_t>(std::max(OutputChannels(), kMinOutputBuffers)), frames);
    }

    SDirectSetup mSetup;
    bool mStarted = false;
    CVST2PluginLoader mLoader;
    CVST2PluginLoader::EntryFunction mEntry;
    AEffect* mEffect = nullptr;
    VstTimeInfo mTime{};
    CGuardedChannels mInputs, mOutputs;
    std::vector<float*> mInputPtrs, mOutputPtrs;
    std::vector<VstMidiEvent> mEventRecords;
    std::vector<char> mEventStorage;  // a VstEvents with room for kMaxEvents pointers
};

}  // namespace

std::unique_ptr<IDirectPlugin> MakeDirectVst2Plugin() { return std::make_unique<CDirectVst2Plugin>(); }

}  // namespace AAXDirect
