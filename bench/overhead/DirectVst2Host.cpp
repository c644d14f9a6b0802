// The VST 2 baseline: the library opened with the wrapper's own loader, each
// instance's events in one effProcessEvents call, then processReplacing.
#include <algorithm>
#include <cstring>

#include "AlignedChannels.h"
#include "DirectHost.h"
#include "vst2/CVST2PluginLoader.h"
#include "vst2/VstInterface.h"

namespace BenchOverhead {

namespace {

constexpr VstInt32 kStandardBlock = 4096;  // what the STANDARD wrapper announces
constexpr int kInputChannels = 32;
constexpr int kOutputChannels = 34;
constexpr size_t kMaxEvents = 512;

// The host behind every effect; resvd1 is the host's own field of AEffect.
class CDirectVst2Host;
// The effect being created has no resvd1 yet; its host answers meanwhile.
thread_local CDirectVst2Host* tCreating = nullptr;

class CDirectVst2Host final : public IDirectHost {
public:
    ~CDirectVst2Host() override
    {
        for (AEffect* effect : mEffects) {
            Dispatch(effect, effMainsChanged, 0, 0, nullptr);
            Dispatch(effect, effClose, 0, 0, nullptr);
        }
    }

    bool Open(const SDirectSetup& setup, std::string& error) override
    {
        mSetup = setup;
        mEntry = mLoader.loadLibrary(setup.path.c_str());
        if (!mEntry) {
            error = mLoader.lastError();
            return false;
        }
        mTime.sampleRate = setup.sampleRate;
        mInputPtrs = AAXHost::AlignedChannels(mInputs, kInputChannels, static_cast<size_t>(setup.blockSize));
        for (int i = 0; i < setup.instances; ++i)
            if (!AddInstance(error))
                return false;
        mEventRecords.resize(kMaxEvents);
        mEventStorage.resize(sizeof(VstEvents) + kMaxEvents * sizeof(VstEvent*));
        return true;
    }

    void Prepare(const std::vector<AAX_CMidiPacket>& midi, int64_t position) override
    {
        mTime.flags = kVstPpqPosValid | kVstTempoValid | kVstTimeSigValid | kVstTransportPlaying;
        mTime.samplePos = static_cast<double>(position);
        mTime.ppqPos = QuarterNotesAt(position, mSetup.sampleRate);
        mTime.tempo = kTempo;
        mTime.timeSigNumerator = 4;
        mTime.timeSigDenominator = 4;
        auto* list = reinterpret_cast<VstEvents*>(mEventStorage.data());
        const size_t count = std::min(midi.size(), kMaxEvents);
        for (size_t i = 0; i < count; ++i) {
            VstMidiEvent& event = mEventRecords[i];
            event = VstMidiEvent{};
            event.type = kVstMidiType;
            event.byteSize = sizeof(VstMidiEvent);
            event.deltaFrames = static_cast<VstInt32>(midi[i].mTimestamp);
            for (int b = 0; b < 3; ++b)
                event.midiData[b] = static_cast<char>(midi[i].mData[b]);
            list->events[i] = reinterpret_cast<VstEvent*>(&event);
        }
        list->numEvents = static_cast<VstInt32>(count);
        list->reserved = 0;
    }

    void Process() override
    {
        auto* list = reinterpret_cast<VstEvents*>(mEventStorage.data());
        for (size_t i = 0; i < mEffects.size(); ++i) {
            AEffect* effect = mEffects[i];
            if (list->numEvents > 0)
                effect->dispatcher(effect, effProcessEvents, 0, 0, list, 0.0f);
            effect->processReplacing(effect, mInputPtrs.data(), mOutputPtrs[i].data(), mSetup.blockSize);
        }
    }

    int OutputChannels() const override
    {
        return mEffects.empty() ? 0 : std::min(mEffects.front()->numOutputs, kOutputChannels);
    }

    const float* Output(int instance, int channel) const override
    {
        return mOutputPtrs[static_cast<size_t>(instance)][static_cast<size_t>(channel)];
    }

private:
    static VstIntPtr Callback(AEffect* effect, VstInt32 opcode, VstInt32, VstIntPtr, void* ptr, float)
    {
        CDirectVst2Host* host = effect != nullptr && effect->resvd1 != 0
                                    ? reinterpret_cast<CDirectVst2Host*>(effect->resvd1)
                                    : tCreating;
        if (host == nullptr)
            return opcode == audioMasterVersion ? kVstVersion : 0;
        return host->Answer(effect, opcode, ptr);
    }

    // A mainstream host's answers; the CLASSIC start-up differs only in the
    // order of its first calls, which Open follows.
    VstIntPtr Answer(AEffect* effect, VstInt32 opcode, void* ptr)
    {
        switch (opcode) {
        case audioMasterVersion: return kVstVersion;
        case audioMasterGetTime: return reinterpret_cast<VstIntPtr>(&mTime);
        case audioMasterGetSampleRate: return static_cast<VstIntPtr>(mSetup.sampleRate);
        case audioMasterGetBlockSize: return kStandardBlock;
        case audioMasterCurrentId: return effect != nullptr ? effect->uniqueID : 0;
        case audioMasterCanDo: {
            static const char* const kCanDo[] = {"sendVstEvents", "sendVstMidiEvent", "sendVstTimeInfo",
                                                 "receiveVstEvents", "receiveVstMidiEvent"};
            for (const char* text : kCanDo)
                if (ptr != nullptr && std::strcmp(static_cast<const char*>(ptr), text) == 0)
                    return 1;
            return 0;
        }
        default: return 0;
        }
    }

    static VstIntPtr Dispatch(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr,
                              float opt = 0.0f)
    {
        return effect->dispatcher(effect, opcode, index, value, ptr, opt);
    }

    bool AddInstance(std::string& error)
    {
        tCreating = this;
        AEffect* effect = mEntry(&CDirectVst2Host::Callback);
        tCreating = nullptr;
        if (effect == nullptr || effect->magic != kEffectMagic || effect->processReplacing == nullptr) {
            error = "no usable VST 2 effect from " + mSetup.path;
            return false;
        }
        effect->resvd1 = reinterpret_cast<VstIntPtr>(this);
        mEffects.push_back(effect);
        const float rate = static_cast<float>(mSetup.sampleRate);
        Dispatch(effect, effOpen, 0, 0, nullptr);
        if (mSetup.standard) {
            Dispatch(effect, effSetSampleRate, 0, 0, nullptr, rate);
            Dispatch(effect, effSetBlockSize, 0, kStandardBlock, nullptr);
            Dispatch(effect, effMainsChanged, 0, 1, nullptr);
        } else {
            // CLASSIC: resumed and set to program 0 at creation, and the rate
            // applied (suspend, set, resume) when the first buffer arrives.
            Dispatch(effect, effMainsChanged, 0, 1, nullptr);
            Dispatch(effect, effSetProgram, 0, 0, nullptr);
            Dispatch(effect, effMainsChanged, 0, 0, nullptr);
            Dispatch(effect, effSetSampleRate, 0, 0, nullptr, rate);
            Dispatch(effect, effMainsChanged, 0, 1, nullptr);
        }
        mOutputs.emplace_back();
        mOutputPtrs.push_back(
            AAXHost::AlignedChannels(mOutputs.back(), kOutputChannels, static_cast<size_t>(mSetup.blockSize)));
        return true;
    }

    SDirectSetup mSetup;
    CVST2PluginLoader mLoader;
    CVST2PluginLoader::EntryFunction mEntry;
    VstTimeInfo mTime{};
    std::vector<AEffect*> mEffects;
    std::vector<float> mInputs;
    std::vector<float*> mInputPtrs;
    std::vector<std::vector<float>> mOutputs;  // per instance, its channels one after another
    std::vector<std::vector<float*>> mOutputPtrs;
    std::vector<VstMidiEvent> mEventRecords;
    std::vector<char> mEventStorage;  // a VstEvents with room for kMaxEvents pointers
};

}  // namespace

std::unique_ptr<IDirectHost> MakeDirectVst2Host() { return std::make_unique<CDirectVst2Host>(); }

}  // namespace BenchOverhead
