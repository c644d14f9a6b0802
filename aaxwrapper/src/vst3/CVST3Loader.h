// Creates and owns one VST 3 processor / edit controller pair, and is the host
// context the plug-in talks back to (application, component handler, unit
// handler, timer callback).
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "pluginterfaces/base/ipluginbase.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"
#include "pluginterfaces/vst/ivsteditcontroller.h"
#include "pluginterfaces/vst/ivsthostapplication.h"
#include "pluginterfaces/vst/ivstmessage.h"
#include "pluginterfaces/vst/ivstprocesscontext.h"
#include "pluginterfaces/vst/ivstunits.h"
#include "ProcessGate.h"
#include "fakehost/FakeHostResults.h"
#include "fakehost/HostMode.h"
#include "fakehost/IPluginEditListener.h"
#include "public.sdk/source/common/memorystream.h"
#include "vst3/hosting/EventList.h"
#include "vst3/hosting/HostProcessData.h"
#include "vst3/hosting/ParameterChangeTransfer.h"
#include "vst3/hosting/ParameterChanges.h"
#include "vst3/hosting/Timer.h"

class CVST3Loader : public Steinberg::Vst::IHostApplication,
                    public Steinberg::Vst::IComponentHandler,
                    public Steinberg::Vst::IUnitHandler,
                    public Morvane::vst3::ITimerCallback {
public:
    static constexpr int kMidiChannels = 16;
    // 128 controllers, then channel after-touch, then pitch bend.
    static constexpr int kMidiControllerEntries = 130;
    static constexpr int kAfterTouchEntry = 128;
    static constexpr int kPitchBendEntry = 129;
    static constexpr Steinberg::int32 kEventListSize = 2048;
    static constexpr Steinberg::int32 kMaxBlockSize = 256;
    static constexpr uint32_t kTimerMilliseconds = 50;
    // Channels the host's context carries: inputs, and main pair plus stems.
    static constexpr Steinberg::int32 kContextInputs = 32;
    static constexpr Steinberg::int32 kContextOutputs = 34;
    // An auxiliary output bus wider than this is left switched off.
    static constexpr Steinberg::int32 kMostBusChannels = 64;
    // Channels past the context's that get scratch buffers, at most.
    static constexpr Steinberg::int32 kMostScratchChannels = 256;
    using MidiControllerTable = std::array<std::array<Steinberg::int32, kMidiControllerEntries>, kMidiChannels>;

    CVST3Loader(Steinberg::IPluginFactory* factory, const char* classId, EHostMode mode = EHostMode::kClassic);
    virtual ~CVST3Loader();

    CVST3Loader(const CVST3Loader&) = delete;
    CVST3Loader& operator=(const CVST3Loader&) = delete;

    bool init();
    void setupParameters();
    void setupBuses();
    void initMidiCtrlerAssignment();
    // CLASSIC: set up at the AAX host's rate (44100 when it gave none).
    bool setupProcessing(double hostSampleRate);
    // STANDARD, main thread: set up at this rate and switch the component on;
    // again (switched off meanwhile, processing held off) on a rate change.
    bool activate(double sampleRate);
    // STANDARD, main thread: the process mode (offline or real time); an
    // active component is set up again, switched off meanwhile.
    bool setOffline(bool offline);
    // STANDARD: the processor's latency, read each time it is switched on.
    Steinberg::int32 getLatency() const { return mLatency; }
    // The AAX side, told of the plug-in's own edits.
    void setEditListener(IPluginEditListener* listener) { mEditListener = listener; }
    // Why the pair could not be made; empty when it was.
    const std::string& getLoadError() const { return mLoadError; }
    // The most samples one process call may be given.
    Steinberg::int32 getMaxBlock() const { return mMaxBlock; }
    double getSampleRate() const { return mSampleRate; }
    bool isStandard() const { return mStandard; }
    // Held off while the main thread changes the set-up.
    Morvane::CProcessGate& gate() { return mGate; }
    Steinberg::int32 countMainBusChannels(Steinberg::Vst::BusDirection direction, uint64_t& mask);
    // Where each output bus that plays lands, as set up with the buses.
    const std::vector<SOutputRoute>& getOutputRoutes() const { return mOutputRoutes; }

    // Main thread: queues a host change for the controller, then the processor.
    void addParameterChange(unsigned int id, double value, int sampleOffset);
    // STANDARD, main thread, processing held off: a restored state
    // supersedes the values still on their way to the processor or the
    // controller.
    void dropPendingChanges()
    {
        mHostToProcessor.removeChanges();
        mProcessorToController.removeChanges();
    }
    // Real-time thread.
    void setProcessingBuffers(float* const* inputs, float* const* outputs);
    void doProcess(int numSamples);
    // STANDARD, real-time thread: a value for the controller, delivered by
    // the timer on the main thread.
    void queueForController(Steinberg::Vst::ParamID id, double value);
    // STANDARD: steps of the channel's program-change parameter, read at set-up.
    Steinberg::int32 getProgramChangeSteps(int channel) const { return mProgramChangeSteps[static_cast<size_t>(channel)]; }

    // Main thread: held while talking to the controller, so that the timer
    // thread's onTimer never runs at the same time.
    std::unique_lock<std::recursive_mutex> lockControllerAccess();

    // IHostApplication
    Steinberg::tresult PLUGIN_API getName(Steinberg::Vst::String128 name) override;
    Steinberg::tresult PLUGIN_API createInstance(Steinberg::TUID cid, Steinberg::TUID iid, void** obj) override;
    // IComponentHandler
    Steinberg::tresult PLUGIN_API beginEdit(Steinberg::Vst::ParamID id) override;
    Steinberg::tresult PLUGIN_API performEdit(Steinberg::Vst::ParamID id, Steinberg::Vst::ParamValue valueNormalized) override;
    Steinberg::tresult PLUGIN_API endEdit(Steinberg::Vst::ParamID id) override;
    Steinberg::tresult PLUGIN_API restartComponent(Steinberg::int32 flags) override;
    // IUnitHandler
    Steinberg::tresult PLUGIN_API notifyUnitSelection(Steinberg::Vst::UnitID unitId) override;
    Steinberg::tresult PLUGIN_API notifyProgramListChange(Steinberg::Vst::ProgramListID listId,
                                                          Steinberg::int32 programIndex) override;
    // ITimerCallback: called on the timer's thread, with the controller lock held.
    void onTimer(Morvane::vst3::Timer* timer) override;
    // FUnknown: the fake host alone owns the loader, so no counting.
    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

    Steinberg::Vst::IAudioProcessor* getProcessor() const { return mProcessor; }
    Steinberg::Vst::IComponent* getComponent() const { return mComponent; }
    Steinberg::Vst::IEditController* getController() const { return mController; }
    // The controller's units and program lists; null when it has none.
    Steinberg::Vst::IUnitInfo* getUnitInfo() const { return mUnitInfo; }
    Steinberg::Vst::ProcessContext& getProcessContext() { return mProcessContext; }
    Morvane::vst3::HostProcessData& getProcessData() { return mProcessData; }
    Morvane::vst3::EventList* getInputEvents() const { return mInputEvents.get(); }
    Morvane::vst3::EventList* getOutputEvents() const { return mOutputEvents.get(); }
    Morvane::vst3::ParameterChanges& getInputChanges() { return mInputChanges; }
    const MidiControllerTable* getMidiControllerTable() const { return mMidiCCMapping.get(); }
    Steinberg::int32 getProgramChangeParameter(int channel) const { return mProgramChangeParameter[static_cast<size_t>(channel)]; }
    uint64_t getMainBusMask(Steinberg::Vst::BusDirection direction) const
    {
        return direction == Steinberg::Vst::kInput ? mInputMainBusMask : mOutputMainBusMask;
    }
    bool isProcessingStarted() const { return mProcessingStarted; }
    bool areConnected() const { return mConnected; }
    Morvane::vst3::Timer* getTimer() const { return mTimer.get(); }

private:
    void createClassic(const char* classId);
    void createStandard(const char* classId);
    void createStandardController();
    void queryControllerExtensions();
    bool configureProcessing(double sampleRate);
    bool reactivate(double sampleRate, bool rebuildBuses = false);
    void rereadParameterValues();
    void drainToController(Morvane::vst3::ParameterChangeTransfer& queue);
    void releaseAll();
    void routeOutputBuses();
    void routeAuxiliaryOutputBuses(std::vector<Steinberg::int32>& firstChannel, Steinberg::int32 next);
    void noteOutputRoute(Steinberg::int32 bus, const Steinberg::Vst::BusInfo& info, Steinberg::int32 firstChannel);
    void makeScratchChannels();
    void linkChannels();
    float* scratchChannel(Steinberg::Vst::BusDirection direction, Steinberg::int32 channel);

    Steinberg::IPluginFactory* mFactory = nullptr;
    Steinberg::Vst::IAudioProcessor* mProcessor = nullptr;
    Steinberg::Vst::IComponent* mComponent = nullptr;
    Steinberg::Vst::IEditController* mController = nullptr;
    Steinberg::Vst::IUnitInfo* mUnitInfo = nullptr;
    Steinberg::Vst::IMidiMapping* mMidiMapping = nullptr;
    Steinberg::Vst::IConnectionPoint* mComponentConnection = nullptr;
    Steinberg::Vst::IConnectionPoint* mControllerConnection = nullptr;

    Morvane::vst3::HostProcessData mProcessData;
    Steinberg::Vst::ProcessContext mProcessContext{};
    Morvane::vst3::ParameterChanges mInputChanges;
    Morvane::vst3::ParameterChanges mOutputChanges;
    Morvane::vst3::ParameterChangeTransfer mHostToProcessor;
    Morvane::vst3::ParameterChangeTransfer mProcessorToController;
    Morvane::vst3::ParameterChangeTransfer mHostToController;
    std::unique_ptr<Morvane::vst3::EventList> mInputEvents;
    std::unique_ptr<Morvane::vst3::EventList> mOutputEvents;
    uint64_t mInputMainBusMask = 0;
    uint64_t mOutputMainBusMask = 0;
    Steinberg::int32 mInputChannelCount = 0;
    // Output channels the buses fill, counted as context channels: past
    // kContextOutputs they are scratch.
    Steinberg::int32 mOutputChannelCount = 0;
    // Each output bus's first context channel; -1 for a bus that is off.
    std::vector<Steinberg::int32> mOutputBusFirstChannel;
    // One bus channel slot of the process data and what fills it: a context
    // channel, or (contextChannel -1) a scratch buffer or nothing.
    struct SChannelLink {
        float** slot = nullptr;
        Steinberg::int32 contextChannel = -1;
        float* scratch = nullptr;
        bool operator==(const SChannelLink& o) const
        {
            return slot == o.slot && contextChannel == o.contextChannel && scratch == o.scratch;
        }
    };
    std::vector<SChannelLink> mInputLinks;
    std::vector<SChannelLink> mOutputLinks;
    std::vector<SOutputRoute> mOutputRoutes;
    Steinberg::MemoryStream mStream;
    // Main-bus channels beyond the context's get scratch buffers of the most
    // samples one call may be given, made with the buses: silence in, output
    // dropped.
    std::vector<float> mScratchInputs;
    std::vector<float> mScratchOutputs;
    Steinberg::int32 mScratchInputChannels = 0;
    Steinberg::int32 mScratchOutputChannels = 0;

    bool mComponentInitialized = false;
    bool mControllerInitialized = false;
    bool mConnected = false;
    bool mProcessingStarted = false;
    bool mActive = false;

    const bool mStandard;
    const Steinberg::int32 mMaxBlock;
    double mSampleRate = 0.0;
    bool mOffline = false;
    Steinberg::int32 mLatency = 0;
    bool mReactivating = false;  // a restart asked for from inside setActive waits for its end
    std::string mLoadError;
    IPluginEditListener* mEditListener = nullptr;
    Morvane::CProcessGate mGate;
    std::array<Steinberg::int32, kMidiChannels> mProgramChangeSteps{};

    std::unique_ptr<MidiControllerTable> mMidiCCMapping;
    std::array<Steinberg::int32, kMidiChannels> mProgramChangeParameter{};

    std::recursive_mutex mNoTimerMutex;  // stands in when no timer thread exists
    std::unique_ptr<Morvane::vst3::Timer> mTimer;
};
