// The VST 3 baseline: the module opened with the wrapper's own loader, the
// component set up as the wrapper's host modes do (main buses on, default
// aux buses off), and one process call per instance with the hosting classes
// the wrapper uses. No controller: processing does not involve it.
#include <algorithm>
#include <cstring>

#include "AlignedChannels.h"
#include "DirectHost.h"
#include "fakehost/HostMode.h"
#include "pluginterfaces/base/ipluginbase.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"
#include "public.sdk/source/vst/hosting/hostclasses.h"
#include "sharedobject/SharedObject.h"
#include "vst3/hosting/EventList.h"
#include "vst3/hosting/HostProcessData.h"
#include "vst3/hosting/ParameterChanges.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace BenchOverhead {

namespace {

constexpr int32 kClassicMaxBlock = 256;  // the CLASSIC wrapper's announced maximum
constexpr int32 kEventListSize = 2048;   // as large as the wrapper's
// Room for a change of every parameter, as a host sizes it from the
// controller (the wrapper does); more than any of our plug-ins has.
constexpr int32 kParameterQueues = 128;

struct SInstance {
    IComponent* component = nullptr;
    IAudioProcessor* processor = nullptr;
    std::unique_ptr<Morvane::vst3::HostProcessData> data;
    std::vector<float> outputStorage, inputStorage;
    std::vector<float*> outputs, inputs;  // main bus channels
};

class CDirectVst3Host final : public IDirectHost {
public:
    ~CDirectVst3Host() override
    {
        for (SInstance& instance : mInstances) {
            instance.processor->setProcessing(false);
            instance.component->setActive(false);
            instance.data.reset();
            instance.component->terminate();
            instance.processor->release();
            instance.component->release();
        }
        if (mFactory != nullptr)
            mFactory->release();
    }

    bool Open(const SDirectSetup& setup, std::string& error) override
    {
        mSetup = setup;
        if (!mModule.OpenBundle(setup.path)) {
            error = setup.path + ": " + mModule.lastError;
            return false;
        }
        auto getFactory = mModule.GetFunction<IPluginFactory*()>("GetPluginFactory", true);
        mFactory = getFactory ? getFactory() : nullptr;
        if (mFactory == nullptr || !FindAudioClass()) {
            error = setup.path + " offers no audio module class";
            return false;
        }
        for (int i = 0; i < setup.instances; ++i)
            if (!AddInstance(error))
                return false;
        return true;
    }

    void Prepare(const std::vector<AAX_CMidiPacket>& midi, int64_t position) override
    {
        mContext.state = ProcessContext::kProjectTimeMusicValid | ProcessContext::kTempoValid |
                         ProcessContext::kTimeSigValid | ProcessContext::kPlaying;
        mContext.sampleRate = mSetup.sampleRate;
        mContext.tempo = kTempo;
        mContext.timeSigNumerator = 4;
        mContext.timeSigDenominator = 4;
        mContext.projectTimeMusic = QuarterNotesAt(position, mSetup.sampleRate);
        mContext.projectTimeSamples = position;
        mEvents.clear();
        for (const AAX_CMidiPacket& packet : midi) {
            const uint8_t status = packet.mData[0] & 0xF0;
            if (status != 0x90 && status != 0x80)
                continue;
            Event e{};
            e.sampleOffset = static_cast<int32>(packet.mTimestamp);
            const int16 channel = static_cast<int16>(packet.mData[0] & 0x0F);
            const float velocity = packet.mData[2] * (1.0f / 127.0f);
            if (status == 0x90) {
                e.type = Event::kNoteOnEvent;
                e.noteOn = {channel, static_cast<int16>(packet.mData[1]), 0.0f, velocity, 0, -1};
            } else {
                e.type = Event::kNoteOffEvent;
                e.noteOff = {channel, static_cast<int16>(packet.mData[1]), velocity, -1, 0.0f};
            }
            mEvents.addEvent(e);
        }
        mOutputChanges.clearQueue();
    }

    void Process() override
    {
        for (SInstance& instance : mInstances)
            instance.processor->process(*instance.data);
    }

    int OutputChannels() const override
    {
        return mInstances.empty() ? 0 : static_cast<int>(mInstances.front().outputs.size());
    }

    const float* Output(int instance, int channel) const override
    {
        return mInstances[static_cast<size_t>(instance)].outputs[static_cast<size_t>(channel)];
    }

private:
    bool FindAudioClass()
    {
        for (int32 i = 0; i < mFactory->countClasses(); ++i)
            if (mFactory->getClassInfo(i, &mClass) == kResultOk &&
                std::strncmp(mClass.category, kVstAudioEffectClass, PClassInfo::kCategorySize) == 0)
                return true;
        return false;
    }

    bool AddInstance(std::string& error)
    {
        SInstance instance;
        if (mFactory->createInstance(mClass.cid, IComponent::iid, reinterpret_cast<void**>(&instance.component)) !=
                kResultOk ||
            instance.component == nullptr) {
            error = "the audio class cannot be created as a component";
            return false;
        }
        if (instance.component->queryInterface(IAudioProcessor::iid, reinterpret_cast<void**>(&instance.processor)) !=
                kResultOk ||
            instance.component->initialize(&mHostContext) != kResultOk) {
            instance.component->release();
            error = "the component is no audio processor or refuses to start";
            return false;
        }
        instance.data = std::make_unique<Morvane::vst3::HostProcessData>();
        instance.data->prepare(*instance.component, 0, kSample32);
        ConnectMainBuses(instance, kInput, instance.inputStorage, instance.inputs, instance.data->numInputs,
                         instance.data->inputs);
        ConnectMainBuses(instance, kOutput, instance.outputStorage, instance.outputs, instance.data->numOutputs,
                         instance.data->outputs);
        instance.data->processMode = kRealtime;
        instance.data->symbolicSampleSize = kSample32;
        instance.data->numSamples = mSetup.blockSize;
        instance.data->processContext = &mContext;
        instance.data->inputEvents = &mEvents;
        instance.data->inputParameterChanges = &mInputChanges;
        instance.data->outputParameterChanges = &mOutputChanges;

        ProcessSetup setup{kRealtime, kSample32, mSetup.standard ? kStandardMaxBlock : kClassicMaxBlock,
                           mSetup.sampleRate};
        instance.processor->setupProcessing(setup);
        instance.component->setActive(true);
        instance.processor->setProcessing(true);
        mInstances.push_back(std::move(instance));
        return true;
    }

    // Main buses get channels of their own, aligned as the AAX host aligns
    // them; aux buses are switched off as the wrapper switches them off.
    void ConnectMainBuses(SInstance& instance, BusDirection direction, std::vector<float>& storage,
                          std::vector<float*>& channels, int32 busCount, AudioBusBuffers* buses)
    {
        std::vector<int32> mainBuses;
        size_t count = 0;
        for (int32 bus = 0; bus < busCount; ++bus) {
            BusInfo info{};
            if (instance.component->getBusInfo(kAudio, direction, bus, info) != kResultOk)
                continue;
            if (info.busType != kMain) {
                if (info.flags & BusInfo::kDefaultActive)
                    instance.component->activateBus(kAudio, direction, bus, false);
                continue;
            }
            instance.component->activateBus(kAudio, direction, bus, true);
            mainBuses.push_back(bus);
            count += static_cast<size_t>(buses[bus].numChannels);
        }
        channels = AAXHost::AlignedChannels(storage, count, static_cast<size_t>(mSetup.blockSize));
        size_t next = 0;
        for (int32 bus : mainBuses)
            for (int32 c = 0; c < buses[bus].numChannels; ++c)
                buses[bus].channelBuffers32[c] = channels[next++];
    }

    SDirectSetup mSetup;
    Morvane::SharedObject mModule;
    IPluginFactory* mFactory = nullptr;
    PClassInfo mClass{};
    HostApplication mHostContext;
    ProcessContext mContext{};
    Morvane::vst3::EventList mEvents{kEventListSize};
    Morvane::vst3::ParameterChanges mInputChanges{kParameterQueues}, mOutputChanges{kParameterQueues};
    std::vector<SInstance> mInstances;
};

}  // namespace

std::unique_ptr<IDirectHost> MakeDirectVst3Host() { return std::make_unique<CDirectVst3Host>(); }

}  // namespace BenchOverhead
