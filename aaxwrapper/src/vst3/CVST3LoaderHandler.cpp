// The loader as the controller's host: edits from the plug-in's editor become
// AAX gestures, restarts are honoured, and the timer keeps the controller in
// step with the processor and the host.
#include "vst3/CVST3Loader.h"

#include <cstdio>

#include "AAX_CEffectParameters.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {
struct ParamIdText {
    explicit ParamIdText(ParamID id) { std::snprintf(text, sizeof(text), "%d", static_cast<int>(id)); }
    char text[32];
};
}  // namespace

tresult PLUGIN_API CVST3Loader::beginEdit(ParamID id)
{
    mOwner.TouchParameter(ParamIdText(id).text);
    return kResultOk;
}

tresult PLUGIN_API CVST3Loader::performEdit(ParamID id, ParamValue valueNormalized)
{
    mOwner.SetParameterNormalizedValue(ParamIdText(id).text, valueNormalized);
    mHostToController.addChange(id, valueNormalized, 0);
    mHostToProcessor.addChange(id, valueNormalized, 0);
    return kResultOk;
}

tresult PLUGIN_API CVST3Loader::endEdit(ParamID id)
{
    mOwner.ReleaseParameter(ParamIdText(id).text);
    return kResultOk;
}

tresult PLUGIN_API CVST3Loader::restartComponent(int32 flags)
{
    tresult result = kResultFalse;
    if (flags & kIoChanged) {
        setupBuses();
        result = kResultOk;
    }
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
