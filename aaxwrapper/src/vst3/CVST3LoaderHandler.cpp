// The loader as the controller's host: edits from the plug-in's editor become
// AAX gestures, restarts are honoured, and the timer keeps the controller in
// step with the processor and the host.
#include "vst3/CVST3Loader.h"

#include <cstdio>

#include "AAX_CEffectParameters.h"
#include "ThreadRole.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
struct ParamIdText {
    // Unsigned, as the front end spells parameter tags; the same text as "%d"
    // for every identifier below 2^31.
    explicit ParamIdText(ParamID id) { std::snprintf(text, sizeof(text), "%u", static_cast<unsigned>(id)); }
    char text[32];
};
}  // namespace

tresult PLUGIN_API CVST3Loader::beginEdit(ParamID id)
{
    MV_MAIN_THREAD("IComponentHandler::beginEdit");
    mOwner.TouchParameter(ParamIdText(id).text);
    return kResultOk;
}

tresult PLUGIN_API CVST3Loader::performEdit(ParamID id, ParamValue valueNormalized)
{
    // Writes the transfer queues whose single writer is the main thread.
    MV_MAIN_THREAD("IComponentHandler::performEdit");
    if (mStandard) {
        // Once to the AAX host, whose echo the listener then recognises, and
        // once to the processor; the controller already has its own value.
        if (mEditListener)
            mEditListener->OnPluginValue(id, valueNormalized);
        mOwner.SetParameterNormalizedValue(ParamIdText(id).text, valueNormalized);
        mHostToProcessor.addChange(id, valueNormalized, 0);
        return kResultOk;
    }
    mOwner.SetParameterNormalizedValue(ParamIdText(id).text, valueNormalized);
    mHostToController.addChange(id, valueNormalized, 0);
    mHostToProcessor.addChange(id, valueNormalized, 0);
    return kResultOk;
}

tresult PLUGIN_API CVST3Loader::endEdit(ParamID id)
{
    MV_MAIN_THREAD("IComponentHandler::endEdit");
    mOwner.ReleaseParameter(ParamIdText(id).text);
    return kResultOk;
}

tresult PLUGIN_API CVST3Loader::restartComponent(int32 flags)
{
    MV_MAIN_THREAD("IComponentHandler::restartComponent");
    tresult result = kResultFalse;
    if (flags & kIoChanged) {
        // STANDARD: never rebuild the buses under a running process call.
        if (mStandard) {
            Morvane::CProcessGateClosed closed(mGate);
            setupBuses();
        } else {
            setupBuses();
        }
        result = kResultOk;
    }
    if (mStandard && (flags & kParamValuesChanged))
        rereadParameterValues();
    // Accepted but not acted upon: values and titles are read when needed,
    // and the AAX side has no latency to report.
    if (flags & (kParamValuesChanged | kParamTitlesChanged))
        result = kResultOk;
    if ((flags & kLatencyChanged) && mProcessor)
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
        const double value = mController->getParamNormalized(info.id);
        const ParamIdText id(info.id);
        double current = 0.0;
        if (mOwner.GetParameterNormalizedValue(id.text, &current) != 0 || current == value)
            continue;
        if (mEditListener)
            mEditListener->OnPluginValue(info.id, value);
        mOwner.SetParameterNormalizedValue(id.text, value);
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
