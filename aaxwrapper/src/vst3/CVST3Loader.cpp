// Creation, initialisation, connection and tear-down of the processor /
// controller pair, and the set-up of parameters and MIDI mappings.
#include "vst3/CVST3Loader.h"

#include <algorithm>
#include <cstdio>
#include <vector>

#include "ThreadRole.h"
#include "logger/CLog.h"
#include "public.sdk/source/vst/hosting/hostclasses.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

template <typename T>
void releaseInterface(T*& object)
{
    if (object) {
        object->release();
        object = nullptr;
    }
}

// Two interface pointers name the same object when their FUnknown agrees.
bool sameObject(FUnknown* a, FUnknown* b)
{
    if (!a || !b)
        return false;
    FUnknown* ua = nullptr;
    FUnknown* ub = nullptr;
    a->queryInterface(FUnknown::iid, reinterpret_cast<void**>(&ua));
    b->queryInterface(FUnknown::iid, reinterpret_cast<void**>(&ub));
    const bool same = ua && ua == ub;
    if (ua)
        ua->release();
    if (ub)
        ub->release();
    return same;
}

}  // namespace

CVST3Loader::CVST3Loader(IPluginFactory* factory, const char* classId, EHostMode mode)
    : mFactory(factory),
      mStandard(mode == EHostMode::kStandard),
      mMaxBlock(mode == EHostMode::kStandard ? kStandardMaxBlock : kMaxBlockSize)
{
    mProgramChangeParameter.fill(-1);
    if (!mFactory || !classId) {
        mLoadError = "the module has no plug-in factory";
        return;
    }
    if (mStandard)
        createStandard(classId);
    else
        createClassic(classId);
    if (!mStandard && mProcessor && !mController)
        MV_LOG("fakehost", kLogWarning, "VST3 plug-in without edit controller");

    if (!init()) {
        MV_LOG("fakehost", kLogError, "VST3 component initialization failed");
        if (mLoadError.empty())
            mLoadError = "the VST 3 component failed to initialise";
    }
    mFactory->release();
}

void CVST3Loader::createClassic(const char* classId)
{
    if (mFactory->createInstance(classId, IAudioProcessor::iid, reinterpret_cast<void**>(&mProcessor)) != kResultOk)
        mProcessor = nullptr;
    if (mProcessor) {
        if (mProcessor->queryInterface(IEditController::iid, reinterpret_cast<void**>(&mController)) != kResultOk)
            mController = nullptr;
        if (!mController) {
            IComponent* component = nullptr;
            if (mProcessor->queryInterface(IComponent::iid, reinterpret_cast<void**>(&component)) == kResultOk &&
                component) {
                TUID controllerId;
                if (component->getControllerClassId(controllerId) == kResultOk) {
                    if (mFactory->createInstance(controllerId, IEditController::iid,
                                                 reinterpret_cast<void**>(&mController)) != kResultOk)
                        mController = nullptr;
                }
                component->release();
            }
        }
    } else {
        MV_LOG("fakehost", kLogError, "VST3 processor creation failed");
        mLoadError = "the factory created no IAudioProcessor for the audio class";
    }
}

// The VST 3 documentation's host workflow: the class is created as a
// component and the processor is queried from it. Both pointers are kept:
// a processor may be an object of its own that answers no query back (DPF).
// The controller is made once the component is initialised.
void CVST3Loader::createStandard(const char* classId)
{
    if (mFactory->createInstance(classId, IComponent::iid, reinterpret_cast<void**>(&mComponent)) != kResultOk ||
        !mComponent) {
        mComponent = nullptr;
        MV_LOG("fakehost", kLogError, "VST3 component creation failed");
        mLoadError = "the factory created no IComponent for the audio class";
        return;
    }
    if (mComponent->queryInterface(IAudioProcessor::iid, reinterpret_cast<void**>(&mProcessor)) != kResultOk)
        mProcessor = nullptr;
    if (!mProcessor)
        mLoadError = "the component is no IAudioProcessor";
}

// STANDARD: the class the component names, else the component itself.
void CVST3Loader::createStandardController()
{
    TUID controllerId;
    if (mComponent->getControllerClassId(controllerId) == kResultOk &&
        mFactory->createInstance(controllerId, IEditController::iid, reinterpret_cast<void**>(&mController)) !=
            kResultOk)
        mController = nullptr;
    if (!mController &&
        mComponent->queryInterface(IEditController::iid, reinterpret_cast<void**>(&mController)) != kResultOk)
        mController = nullptr;
    if (!mController)
        MV_LOG("fakehost", kLogWarning, "VST3 plug-in without edit controller");
}

void CVST3Loader::queryControllerExtensions()
{
    if (mController->queryInterface(IUnitInfo::iid, reinterpret_cast<void**>(&mUnitInfo)) != kResultOk)
        mUnitInfo = nullptr;
    if (mController->queryInterface(IMidiMapping::iid, reinterpret_cast<void**>(&mMidiMapping)) != kResultOk)
        mMidiMapping = nullptr;
}

bool CVST3Loader::init()
{
    std::puts("Init");
    if (!mProcessor)
        return false;
    // CLASSIC asks the processor for its component; STANDARD kept the one it made.
    if (!mStandard &&
        mProcessor->queryInterface(IComponent::iid, reinterpret_cast<void**>(&mComponent)) != kResultOk)
        mComponent = nullptr;
    if (mController)
        queryControllerExtensions();
    if (!mComponent)
        return false;

    mComponentInitialized = true;
    if (mComponent->initialize(static_cast<IHostApplication*>(this)) != kResultOk)
        return false;
    if (mStandard) {
        createStandardController();
        if (mController)
            queryControllerExtensions();
    }

    const bool combined = mController && sameObject(mComponent, mController);
    if (mController) {
        if (!combined) {
            mControllerInitialized = true;
            if (mController->initialize(static_cast<IHostApplication*>(this)) != kResultOk)
                return false;
        }
        mController->setComponentHandler(static_cast<IComponentHandler*>(this));

        // A combined object talks to itself directly; it is never wired to itself.
        if (!combined) {
            if (mComponent->queryInterface(IConnectionPoint::iid, reinterpret_cast<void**>(&mComponentConnection)) != kResultOk)
                mComponentConnection = nullptr;
            if (mController->queryInterface(IConnectionPoint::iid, reinterpret_cast<void**>(&mControllerConnection)) != kResultOk)
                mControllerConnection = nullptr;
            if (mComponentConnection && mControllerConnection) {
                mComponentConnection->connect(mControllerConnection);
                mControllerConnection->connect(mComponentConnection);
                mConnected = true;
            }
        }

        mStream.setSize(0);
        mStream.seek(0, IBStream::kIBSeekSet, nullptr);
        if (mComponent->getState(&mStream) == kResultOk) {
            mStream.seek(0, IBStream::kIBSeekSet, nullptr);
            mController->setComponentState(&mStream);
        }
    }

    setupParameters();
    setupBuses();
    if (!mTimer)
        mTimer = Morvane::vst3::Timer::create(this, kTimerMilliseconds);
    initMidiCtrlerAssignment();
    return true;
}

void CVST3Loader::setupParameters()
{
    const int32 count = mController ? mController->getParameterCount() : 0;
    const int32 n = count > 0 ? count : 0;
    // STANDARD keeps each parameter's last value when a burst fills a queue;
    // CLASSIC drops it, as it always has.
    mHostToProcessor.setMaxParameters(n, mStandard);
    mProcessorToController.setMaxParameters(n, mStandard);
    mHostToController.setMaxParameters(n, mStandard);
    mInputChanges.setMaxParameters(n);
    mOutputChanges.setMaxParameters(n);

    std::vector<ParameterInfo> programChanges;
    for (int32 i = 0; i < n; ++i) {
        ParameterInfo info{};
        if (mController->getParameterInfo(i, info) == kResultOk && (info.flags & ParameterInfo::kIsProgramChange))
            programChanges.push_back(info);
    }

    mProgramChangeSteps.fill(0);
    for (int channel = 0; channel < kMidiChannels; ++channel) {
        int32& programParameter = mProgramChangeParameter[static_cast<size_t>(channel)];
        programParameter = -1;
        if (!mUnitInfo)
            continue;
        UnitID unitId = -1;
        if (mUnitInfo->getUnitByBus(kEvent, kInput, 0, channel, unitId) != kResultOk)
            continue;
        const int32 unitCount = mUnitInfo->getUnitCount();
        for (int32 u = 0; u < unitCount; ++u) {
            UnitInfo unit{};
            if (mUnitInfo->getUnitInfo(u, unit) != kResultOk || unit.id != unitId)
                continue;
            if (unit.programListId != kNoProgramListId) {
                for (const ParameterInfo& info : programChanges) {
                    if (info.unitId == unitId) {
                        programParameter = static_cast<int32>(info.id);
                        mProgramChangeSteps[static_cast<size_t>(channel)] = info.stepCount;
                        break;
                    }
                }
            }
            break;
        }
    }
}

void CVST3Loader::initMidiCtrlerAssignment()
{
    if (!mMidiMapping)
        return;
    if (!mMidiCCMapping)
        mMidiCCMapping = std::make_unique<MidiControllerTable>();
    for (int channel = 0; channel < kMidiChannels; ++channel) {
        for (int cc = 0; cc < kMidiControllerEntries; ++cc) {
            ParamID id = 0;
            int32 entry = -1;
            if (mMidiMapping->getMidiControllerAssignment(0, static_cast<int16>(channel), static_cast<CtrlNumber>(cc), id) ==
                kResultOk)
                entry = static_cast<int32>(id);
            (*mMidiCCMapping)[static_cast<size_t>(channel)][static_cast<size_t>(cc)] = entry;
        }
    }
}

bool CVST3Loader::setupProcessing(double hostSampleRate)
{
    if (!mProcessor)
        return false;
    double sampleRate = hostSampleRate;
    if (!(sampleRate > 0.0)) {
        MV_LOG_AT("warning", kLogNotice, "setupProcessing", "No AAX controller - Setup hard-coded to 44100");
        sampleRate = 44100.0;
    }
    return configureProcessing(sampleRate);
}

bool CVST3Loader::configureProcessing(double sampleRate)
{
    ProcessSetup setup{};
    setup.processMode = mOffline ? kOffline : kRealtime;
    setup.symbolicSampleSize = kSample32;
    setup.maxSamplesPerBlock = mMaxBlock;
    setup.sampleRate = sampleRate;
    mSampleRate = sampleRate;
    return mProcessor->setupProcessing(setup) == kResultOk;
}

bool CVST3Loader::activate(double sampleRate)
{
    if (!mProcessor || !mComponent)
        return false;
    if (mActive && sampleRate == mSampleRate)
        return true;
    return reactivate(sampleRate);
}

bool CVST3Loader::setOffline(bool offline)
{
    if (offline == mOffline)
        return true;
    mOffline = offline;
    MV_LOG("fakehost", kLogInfo, "VST3 - process mode ", offline ? "offline" : "real time");
    // Not yet switched on: the first set-up carries the mode.
    if (!mActive || !mProcessor || !mComponent)
        return true;
    return reactivate(mSampleRate);
}

// The set-up may only change while the component is off, so it is switched
// off and on around it, with no process call in between.
bool CVST3Loader::reactivate(double sampleRate, bool rebuildBuses)
{
    Morvane::CProcessGateClosed closed(mGate);
    mReactivating = true;
    struct SDone {
        bool& flag;
        ~SDone() { flag = false; }
    } done{mReactivating};
    if (mActive) {
        if (mProcessingStarted)
            mProcessor->setProcessing(false);
        mProcessingStarted = false;
        mComponent->setActive(false);
        mActive = false;
    }
    if (rebuildBuses)
        setupBuses();
    MV_LOG("fakehost", kLogInfo, "VST3 - set up at ", sampleRate, " Hz, at most ", mMaxBlock, " samples");
    const bool configured = configureProcessing(sampleRate);
    mActive = mComponent->setActive(true) == kResultOk;
    // The latency is only valid once the component is on again.
    if (mActive && mStandard) {
        mLatency = static_cast<int32>(std::min<uint32>(mProcessor->getLatencySamples(), 0x7FFFFFFF));
        MV_LOG("fakehost", kLogInfo, "VST3 - latency ", mLatency, " samples");
    }
    return configured && mActive;
}

std::unique_lock<std::recursive_mutex> CVST3Loader::lockControllerAccess()
{
    MV_MAIN_THREAD("CVST3Loader::lockControllerAccess");
    return std::unique_lock<std::recursive_mutex>(mTimer ? mTimer->callbackMutex() : mNoTimerMutex);
}

void CVST3Loader::releaseAll()
{
    releaseInterface(mComponentConnection);
    releaseInterface(mControllerConnection);
    releaseInterface(mUnitInfo);
    releaseInterface(mMidiMapping);
    releaseInterface(mController);
    // STANDARD: the processor was handed out by the component; it goes first.
    if (mStandard)
        releaseInterface(mProcessor);
    releaseInterface(mComponent);
    releaseInterface(mProcessor);
}

CVST3Loader::~CVST3Loader()
{
    Morvane::CProcessGateClosed closed(mGate);
    if (mProcessor)
        mProcessor->setProcessing(false);
    if (mComponent)
        mComponent->setActive(false);
    std::puts("Delete");
    // Joins the timer thread: no onTimer call can run past this point.
    mTimer.reset();
    mProcessData.unprepare();
    if (mConnected) {
        mComponentConnection->disconnect(mControllerConnection);
        mControllerConnection->disconnect(mComponentConnection);
        mConnected = false;
    }
    if (mController)
        mController->setComponentHandler(nullptr);
    if (mController && mControllerInitialized)
        mController->terminate();
    if (mComponent && mComponentInitialized)
        mComponent->terminate();
    releaseAll();
    mMidiCCMapping.reset();
    mInputEvents.reset();
    mOutputEvents.reset();
}

tresult PLUGIN_API CVST3Loader::getName(String128 /*name*/)
{
    // Deliberately anonymous: plug-ins must not special-case this host.
    return kResultFalse;
}

tresult PLUGIN_API CVST3Loader::createInstance(TUID cid, TUID iid, void** obj)
{
    if (!obj)
        return kInvalidArgument;
    const FUID classId = FUID::fromTUID(cid);
    const FUID interfaceId = FUID::fromTUID(iid);
    if (classId == IMessage::iid && interfaceId == IMessage::iid) {
        *obj = static_cast<IMessage*>(new HostMessage);
        return kResultOk;
    }
    if (classId == IAttributeList::iid && interfaceId == IAttributeList::iid) {
        *obj = static_cast<IAttributeList*>(new HostAttributeList);
        return kResultOk;
    }
    *obj = nullptr;
    return kResultFalse;
}

tresult PLUGIN_API CVST3Loader::queryInterface(const TUID iid, void** obj)
{
    if (FUnknownPrivate::iidEqual(iid, FUnknown::iid) || FUnknownPrivate::iidEqual(iid, IHostApplication::iid)) {
        *obj = static_cast<IHostApplication*>(this);
        return kResultOk;
    }
    if (FUnknownPrivate::iidEqual(iid, IComponentHandler::iid)) {
        *obj = static_cast<IComponentHandler*>(this);
        return kResultOk;
    }
    if (FUnknownPrivate::iidEqual(iid, IUnitHandler::iid)) {
        *obj = static_cast<IUnitHandler*>(this);
        return kResultOk;
    }
    *obj = nullptr;
    return kNoInterface;
}
