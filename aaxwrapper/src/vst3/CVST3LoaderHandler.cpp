// The loader as the controller's host: edits from the plug-in's editor become
// AAX gestures, restarts are honoured, and the timer keeps the controller in
// step with the processor and the host.
#include "vst3/CVST3Loader.h"

#include "ThreadRole.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

tresult PLUGIN_API CVST3Loader::beginEdit(ParamID id)
{
    MV_MAIN_THREAD("IComponentHandler::beginEdit");
    if (mEditListener)
        mEditListener->OnPluginBeginEdit(id);
    return kResultOk;
}

tresult PLUGIN_API CVST3Loader::performEdit(ParamID id, ParamValue valueNormalized)
{
    // Writes the transfer queues whose single writer is the main thread.
    MV_MAIN_THREAD("IComponentHandler::performEdit");
    // Once to the AAX host, whose echo the listener recognises (STANDARD),
    // and once to the processor. STANDARD's controller already has its own
    // value; CLASSIC sends it back to the controller too.
    if (mEditListener)
        mEditListener->OnPluginEdit(id, valueNormalized);
    if (!mStandard)
        mHostToController.addChange(id, valueNormalized, 0);
    mHostToProcessor.addChange(id, valueNormalized, 0);
    return kResultOk;
}

tresult PLUGIN_API CVST3Loader::endEdit(ParamID id)
{
    MV_MAIN_THREAD("IComponentHandler::endEdit");
    if (mEditListener)
        mEditListener->OnPluginEndEdit(id);
    return kResultOk;
}

tresult PLUGIN_API CVST3Loader::restartComponent(int32 flags)
{
    MV_MAIN_THREAD("IComponentHandler::restartComponent");
    tresult result = kResultFalse;
    // STANDARD switches an active component off and on around a new bus or
    // latency set-up (both are read only while it is off or once it is on
    // again), with processing held off; asked from inside setActive, the
    // set-up in progress reads them at its end anyway.
    const bool canReactivate = mStandard && mActive && !mReactivating && mProcessor;
    const bool busesChanged = (flags & kIoChanged) != 0;
    const bool latencyChanged = (flags & kLatencyChanged) != 0 && mProcessor;
    if (canReactivate && (busesChanged || latencyChanged)) {
        reactivate(mSampleRate, busesChanged);
    } else if (busesChanged) {
        // STANDARD: never rebuild the buses under a running process call.
        if (mStandard) {
            Morvane::CProcessGateClosed closed(mGate);
            setupBuses();
        } else {
            setupBuses();
        }
    }
    if (busesChanged || latencyChanged)
        result = kResultOk;
    if (mStandard && (flags & kParamValuesChanged))
        rereadParameterValues();
    // Accepted but not acted upon: values and titles are read when needed.
    if (flags & (kParamValuesChanged | kParamTitlesChanged))
        result = kResultOk;
    if (flags & kMidiCCAssignmentChanged) {
        initMidiCtrlerAssignment();
        result = kResultOk;
    }
    return result;
}

tresult PLUGIN_API CVST3Loader::notifyUnitSelection(UnitID /*unitId*/) { return kResultOk; }

tresult PLUGIN_API CVST3Loader::notifyProgramListChange(ProgramListID /*listId*/, int32 /*programIndex*/)
{
    return kResultOk;
}

// STANDARD: the controller's values become the AAX parameters' values, so
// that the host's automation and display follow the plug-in.
void CVST3Loader::rereadParameterValues()
{
    if (!mController)
        return;
    const int32 count = mController->getParameterCount();
    for (int32 i = 0; i < count; ++i) {
        ParameterInfo info{};
        if (mController->getParameterInfo(i, info) != kResultOk || (info.flags & ParameterInfo::kIsHidden))
            continue;
        if (mEditListener)
            mEditListener->OnPluginValueMoved(info.id, mController->getParamNormalized(info.id));
    }
}

void CVST3Loader::drainToController(Morvane::vst3::ParameterChangeTransfer& queue)
{
    ParamID id = 0;
    ParamValue value = 0.0;
    int32 offset = 0;
    while (queue.getNextChange(id, value, offset))
        mController->setParamNormalized(id, value);
}

void CVST3Loader::onTimer(Morvane::vst3::Timer* /*timer*/)
{
    if (!mController)
        return;
    drainToController(mProcessorToController);
    drainToController(mHostToController);
}
