// A VST 3 module opened with the wrapper's own loader and driven with the
// hosting classes the wrapper uses: the component the factory created (never
// queried back from the processor: DPF's answers for another object), its
// controller connected, every bus channel given a buffer, main buses on and
// default aux buses off as the wrapper leaves them.
#include <algorithm>
#include <cstring>

#include "GuardedChannels.h"
#include "ByteStream.h"
#include "DirectPlugin.h"
#include "pluginterfaces/base/ipluginbase.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"
#include "pluginterfaces/vst/ivsteditcontroller.h"
#include "pluginterfaces/vst/ivstmessage.h"
#include "public.sdk/source/vst/hosting/hostclasses.h"
#include "sharedobject/SharedObject.h"
#include "vst3/hosting/EventList.h"
#include "vst3/hosting/HostProcessData.h"
#include "vst3/hosting/ParameterChangeTransfer.h"
#include "vst3/hosting/ParameterChanges.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace AAXDirect {

namespace {

constexpr int32 kEventListSize = 2048;  // as large as the wrapper's
// A change of every parameter fits at least once per buffer.
constexpr int32 kMinParameterQueues = 128;

// Edits from the plug-in's own controller are taken and forgotten: no user
// edits here.
class CComponentHandler final : public IComponentHandler {
public:
    tresult PLUGIN_API beginEdit(ParamID) override { return kResultOk; }
    tresult PLUGIN_API performEdit(ParamID, ParamValue) override { return kResultOk; }
    tresult PLUGIN_API endEdit(ParamID) override { return kResultOk; }
    tresult PLUGIN_API restartComponent(int32) override { return kResultOk; }
    tresult PLUGIN_API queryInterface(const TUID iid, void** obj) override
    {
        if (FUnknownPrivate::iidEqual(iid, IComponentHandler::iid) || FUnknownPrivate::iidEqual(iid, FUnknown::iid)) {
            *obj = this;
            return kResultOk;
        }
        *obj = nullptr;
        return kNoInterface;
    }
    uint32 PLUGIN_API addRef() override { return 1; }
    uint32 PLUGIN_API release() override { return 1; }
};

std::string Narrow(const String128 text)
{
    std::string out;
    for (int i = 0; i < 128 && text[i] != 0; ++i)
        out += text[i] < 128 ? static_cast<char>(text[i]) : '?';
    return out;
}

template <class T>
void Release(T*& object)
{
    if (object != nullptr)
        object->release();
    object = nullptr;
}

class CDirectVst3Plugin final : public IDirectPlugin {
public:
    ~CDirectVst3Plugin() override
    {
        if (mComponent != nullptr) {
            if (mActive) {
                mProcessor->setProcessing(false);
                mComponent->setActive(false);
            }
            if (mComponentConnection != nullptr && mControllerConnection != nullptr) {
                mComponentConnection->disconnect(mControllerConnection);
                mControllerConnection->disconnect(mComponentConnection);
            }
            Release(mComponentConnection);
            Release(mControllerConnection);
            if (mController != nullptr && mSeparateController)
                mController->terminate();
            Release(mController);
            mData.reset();
            mComponent->terminate();
            Release(mProcessor);
            Release(mComponent);
        }
        Release(mFactory);
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
        if (mFactory->createInstance(mClass.cid, IComponent::iid, reinterpret_cast<void**>(&mComponent)) != kResultOk ||
            mComponent == nullptr) {
            mComponent = nullptr;
            error = "the audio class cannot be created as a component";
            return false;
        }
        if (mComponent->queryInterface(IAudioProcessor::iid, reinterpret_cast<void**>(&mProcessor)) != kResultOk ||
            mProcessor == nullptr || mComponent->initialize(&mHostContext) != kResultOk) {
            error = "the component is no audio processor or refuses to start";
            return false;
        }
        OpenController();
        mData = std::make_unique<Morvane::vst3::HostProcessData>();
        mData->prepare(*mComponent, 0, kSample32);
        const int32 queues = std::max(kMinParameterQueues, static_cast<int32>(mParameters.size()));
        mInputChanges.setMaxParameters(queues);
        mOutputChanges.setMaxParameters(queues);
        mTransfer.setMaxParameters(queues);
        ConnectBuses(kInput, mInputStorage, mInputs, mData->numInputs, mData->inputs);
        ConnectBuses(kOutput, mOutputStorage, mOutputs, mData->numOutputs, mData->outputs);
        mData->processMode = kRealtime;
        mData->symbolicSampleSize = kSample32;
        mData->processContext = &mContext;
        mData->inputEvents = &mEvents;
        mData->inputParameterChanges = &mInputChanges;
        mData->outputParameterChanges = &mOutputChanges;
        Activate();
        return true;
    }

    void Start() override {}

    void Reconfigure(double sampleRate, int maxBlock) override
    {
        Deactivate();
        mSetup.sampleRate = sampleRate;
        mSetup.maxBlock = maxBlock;
        ConnectBuses(kInput, mInputStorage, mInputs, mData->numInputs, mData->inputs);
        ConnectBuses(kOutput, mOutputStorage, mOutputs, mData->numOutputs, mData->outputs);
        Activate();
    }

    int InputChannels() const override { return static_cast<int>(mMainInputs); }
    int OutputChannels() const override { return static_cast<int>(mMainOutputs); }
    float* Input(int channel) override { return mInputs[static_cast<size_t>(channel)]; }
    const float* Output(int channel) const override { return mOutputs[static_cast<size_t>(channel)]; }

    int ParameterCount() const override { return static_cast<int>(mParameters.size()); }
    std::string ParameterName(int index) override { return mParameterNames[static_cast<size_t>(index)]; }
    std::string ParameterText(int index) override
    {
        if (mController == nullptr)
            return {};
        const ParamID id = mParameters[static_cast<size_t>(index)];
        String128 text{};
        mController->getParamStringByValue(id, mController->getParamNormalized(id), text);
        return Narrow(text);
    }
    double GetParameter(int index) override
    {
        return mController != nullptr ? mController->getParamNormalized(mParameters[static_cast<size_t>(index)]) : 0.0;
    }
    int BypassParameter() const override { return mBypassParameter; }
    void SetParameter(int index, double value) override
    {
        const ParamID id = mParameters[static_cast<size_t>(index)];
        if (mController != nullptr)
            mController->setParamNormalized(id, value);
        mTransfer.addChange(id, value, 0);
    }

    bool SaveState(std::vector<char>& state, std::string& error) override
    {
        CByteStream component, controller;
        if (mComponent->getState(&component) != kResultOk) {
            error = "the component's getState failed";
            return false;
        }
        if (mController != nullptr && mSeparateController && mController->getState(&controller) != kResultOk)
            controller = CByteStream();  // many controllers keep nothing of their own
        state.clear();
        for (const CByteStream* part : {&component, &controller}) {
            const uint64_t size = part->Bytes().size();
            const char* sizeBytes = reinterpret_cast<const char*>(&size);
            state.insert(state.end(), sizeBytes, sizeBytes + sizeof size);
            state.insert(state.end(), part->Bytes().begin(), part->Bytes().end());
        }
        return true;
    }

    bool LoadState(const std::vector<char>& state, std::string& error) override
    {
        std::vector<char> parts[2];
        size_t at = 0;
        for (std::vector<char>& part : parts) {
            uint64_t size = 0;
            if (state.size() - at < sizeof size) {
                error = "a VST 3 state cut short";
                return false;
            }
            std::memcpy(&size, state.data() + at, sizeof size);
            at += sizeof size;
            if (size > state.size() - at) {
                error = "a VST 3 state cut short";
                return false;
            }
            part.assign(state.begin() + static_cast<std::ptrdiff_t>(at),
                        state.begin() + static_cast<std::ptrdiff_t>(at + size));
            at += size;
        }
        CByteStream component(parts[0]);
        if (mComponent->setState(&component) != kResultOk) {
            error = "the component refused its state";
            return false;
        }
        if (mController != nullptr) {
            component.Rewind();
            mController->setComponentState(&component);
            if (mSeparateController && !parts[1].empty()) {
                CByteStream controller(parts[1]);
                mController->setState(&controller);
            }
        }
        return true;
    }

    void Prepare(const AAX_CMidiPacket* midi, size_t count, const SDirectTransport& transport, int frames) override
    {
        mContext.state = ProcessContext::kProjectTimeMusicValid | ProcessContext::kTempoValid |
                         ProcessContext::kTimeSigValid | ProcessContext::kPlaying;
        mContext.sampleRate = mSetup.sampleRate;
        mContext.tempo = transport.tempo;
        mContext.timeSigNumerator = 4;
        mContext.timeSigDenominator = 4;
        mContext.projectTimeMusic = transport.quarterNotes;
        mContext.projectTimeSamples = transport.samplePosition;
        mEvents.clear();
        for (size_t i = 0; i < count; ++i) {
            const AAX_CMidiPacket& packet = midi[i];
            const uint8_t status = packet.mData[0] & 0xF0;
            if (status != 0x90 && status != 0x80)
                continue;
            Event e{};
            e.sampleOffset = static_cast<int32>(packet.mTimestamp);
            const int16 channel = static_cast<int16>(packet.mData[0] & 0x0F);
            const float velocity = packet.mData[2] * (1.0f / 127.0f);
            if (status == 0x90 && packet.mData[2] > 0) {
                e.type = Event::kNoteOnEvent;
                e.noteOn = {channel, static_cast<int16>(packet.mData[1]), 0.0f, velocity, 0, -1};
            } else {
                e.type = Event::kNoteOffEvent;
                e.noteOff = {channel, static_cast<int16>(packet.mData[1]), velocity, -1, 0.0f};
            }
            mEvents.addEvent(e);
        }
        mInputChanges.clearQueue();
        mTransfer.transferChangesTo(mInputChanges);
        mOutputChanges.clearQueue();
        mData->numSamples = frames;
    }

    void Process(int frames) override
    {
        mData->numSamples = frames;
        mProcessor->process(*mData);
    }

    int FirstOverrunOutput() const override { return mOutputStorage.FirstOverrun(); }
    int32_t Latency() override
    {
        return static_cast<int32_t>(std::min<Steinberg::uint32>(mProcessor->getLatencySamples(), 0x7FFFFFFF));
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

    // One object may be both; otherwise the controller class named by the
    // component, connected to it and told its state.
    void OpenController()
    {
        if (mComponent->queryInterface(IEditController::iid, reinterpret_cast<void**>(&mController)) != kResultOk ||
            mController == nullptr) {
            mController = nullptr;
            TUID controllerId;
            if (mComponent->getControllerClassId(controllerId) != kResultOk ||
                mFactory->createInstance(controllerId, IEditController::iid,
                                         reinterpret_cast<void**>(&mController)) != kResultOk ||
                mController == nullptr) {
                mController = nullptr;
                return;
            }
            mSeparateController = true;
            if (mController->initialize(&mHostContext) != kResultOk) {
                Release(mController);
                return;
            }
            if (mComponent->queryInterface(IConnectionPoint::iid, reinterpret_cast<void**>(&mComponentConnection)) ==
                    kResultOk &&
                mController->queryInterface(IConnectionPoint::iid, reinterpret_cast<void**>(&mControllerConnection)) ==
                    kResultOk) {
                mComponentConnection->connect(mControllerConnection);
                mControllerConnection->connect(mComponentConnection);
            }
            CByteStream state;
            if (mComponent->getState(&state) == kResultOk) {
                state.Rewind();
                mController->setComponentState(&state);
            }
        }
        mController->setComponentHandler(&mHandler);
        for (int32 i = 0; i < mController->getParameterCount(); ++i) {
            ParameterInfo info{};
            if (mController->getParameterInfo(i, info) != kResultOk || (info.flags & ParameterInfo::kIsReadOnly))
                continue;
            if ((info.flags & ParameterInfo::kIsBypass) != 0 && mBypassParameter < 0)
                mBypassParameter = static_cast<int>(mParameters.size());
            mParameters.push_back(info.id);
            mParameterNames.push_back(Narrow(info.title));
        }
    }

    void Activate()
    {
        ProcessSetup setup{kRealtime, kSample32, mSetup.maxBlock, mSetup.sampleRate};
        mProcessor->setupProcessing(setup);
        mComponent->setActive(true);
        mProcessor->setProcessing(true);
        mActive = true;
    }

    void Deactivate()
    {
        if (!mActive)
            return;
        mProcessor->setProcessing(false);
        mComponent->setActive(false);
        mActive = false;
    }

    // Every bus's channels get storage, main buses first so that they are
    // the channels shown; aux buses the plug-in turns on by default are
    // switched off, as the wrapper does.
    void ConnectBuses(BusDirection direction, CGuardedChannels& storage, std::vector<float*>& channels,
                      int32 busCount, AudioBusBuffers* buses)
    {
        std::vector<int32> order;
        size_t mainCount = 0, count = 0;
        for (int pass = 0; pass < 2; ++pass)
            for (int32 bus = 0; bus < busCount; ++bus) {
                BusInfo info{};
                const bool isMain =
                    mComponent->getBusInfo(kAudio, direction, bus, info) == kResultOk && info.busType == kMain;
                if (isMain != (pass == 0))
                    continue;
                order.push_back(bus);
                if (isMain) {
                    mComponent->activateBus(kAudio, direction, bus, true);
                    mainCount += static_cast<size_t>(buses[bus].numChannels);
                } else if (info.flags & BusInfo::kDefaultActive) {
                    mComponent->activateBus(kAudio, direction, bus, false);
                }
                count += static_cast<size_t>(buses[bus].numChannels);
            }
        channels = storage.Make(count, static_cast<size_t>(std::max(mSetup.maxBlock, 1)));
        size_t next = 0;
        for (int32 bus : order)
            for (int32 c = 0; c < buses[bus].numChannels; ++c)
                buses[bus].channelBuffers32[c] = channels[next++];
        (direction == kInput ? mMainInputs : mMainOutputs) = mainCount;
    }

    SDirectSetup mSetup;
    Morvane::SharedObject mModule;
    IPluginFactory* mFactory = nullptr;
    PClassInfo mClass{};
    HostApplication mHostContext;
    CComponentHandler mHandler;
    IComponent* mComponent = nullptr;
    IAudioProcessor* mProcessor = nullptr;
    IEditController* mController = nullptr;
    bool mSeparateController = false;
    IConnectionPoint* mComponentConnection = nullptr;
    IConnectionPoint* mControllerConnection = nullptr;
    bool mActive = false;
    std::unique_ptr<Morvane::vst3::HostProcessData> mData;
    std::vector<ParamID> mParameters;
    std::vector<std::string> mParameterNames;
    int mBypassParameter = -1;
    ProcessContext mContext{};
    Morvane::vst3::EventList mEvents{kEventListSize};
    Morvane::vst3::ParameterChanges mInputChanges, mOutputChanges;
    Morvane::vst3::ParameterChangeTransfer mTransfer;
    CGuardedChannels mInputStorage, mOutputStorage;
    std::vector<float*> mInputs, mOutputs;
    size_t mMainInputs = 0, mMainOutputs = 0;
};

}  // namespace

std::unique_ptr<IDirectPlugin> MakeDirectVst3Plugin() { return std::make_unique<CDirectVst3Plugin>(); }

}  // namespace AAXDirect
