#include "SynthController.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "../common/CTrace.h"
#include "SynthView.h"
#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/vst/ivstmidicontrollers.h"
#include "pluginterfaces/vst/ivstunits.h"
#include "pluginterfaces/vst/ivstcomponent.h"

namespace MrvTest {

using namespace Steinberg;
using namespace Steinberg::Vst;

FUnknown* SynthController::create() { return static_cast<IEditController*>(new SynthController); }

tresult PLUGIN_API SynthController::initialize(FUnknown* context)
{
    Trace("ctrl.initialize");
    const tresult result = EditControllerEx1::initialize(context);
    if (result != kResultOk)
        return result;

    addUnit(new Unit(STR16("Programs"), kSynthUnit, kRootUnitId, kSynthProgramList));
    auto* list = new ProgramList(STR16("Factory"), kSynthProgramList, kSynthUnit);
    for (int32 i = 0; i < kSynthProgramCount; ++i) {
        String128 name = {'P', 'r', 'o', 'g', ' ', static_cast<char16>('0' + i), 0};
        list->addProgram(name);
    }
    addProgramList(list);

    // Shown as a host shows real plug-ins' controls: in a unit, and the
    // program as a list of its names.
#ifdef MRV_STRICT
    // Nested groups, and the program list's parameter titled as the plug-in
    // calls it (hosts name it after the list).
    addUnit(new Unit(STR16("Tone"), kSynthToneUnit, kRootUnitId, kNoProgramListId));
    addUnit(new Unit(STR16("Pitch"), kSynthPitchUnit, kSynthToneUnit, kNoProgramListId));
    const UnitID toneUnit = kSynthToneUnit;
    const UnitID pitchUnit = kSynthPitchUnit;
    const TChar* programTitle = STR16("Patch");
#else
    const UnitID toneUnit = kRootUnitId;
    const UnitID pitchUnit = kRootUnitId;
    const TChar* programTitle = STR16("Program");
#endif
    parameters.addParameter(new RangeParameter(STR16("Volume"), SynthTag(kSynthVolume), STR16("%"), 0.0, 100.0, 80.0,
                                               0, ParameterInfo::kCanAutomate, toneUnit));
    parameters.addParameter(STR16("Pressure"), nullptr, 0, 0.0, ParameterInfo::kCanAutomate, SynthTag(kSynthPressure));
    parameters.addParameter(STR16("Bend"), nullptr, 0, 0.5, ParameterInfo::kCanAutomate, SynthTag(kSynthBend),
                            pitchUnit);
    auto* program = new StringListParameter(programTitle, SynthTag(kSynthProgram), nullptr,
                                            ParameterInfo::kCanAutomate | ParameterInfo::kIsProgramChange |
                                                ParameterInfo::kIsList,
                                            kSynthUnit);
    for (int32 i = 0; i < kSynthProgramCount; ++i) {
        String128 name = {'P', 'r', 'o', 'g', ' ', static_cast<char16>('0' + i), 0};
        program->appendString(name);
    }
    parameters.addParameter(program);
    parameters.addParameter(STR16("Hidden"), nullptr, 0, 0.25, ParameterInfo::kIsHidden, SynthTag(kSynthHidden));
    parameters.addParameter(STR16("Peak"), nullptr, 0, 0.0, ParameterInfo::kIsReadOnly, SynthTag(kSynthPeak));
#ifdef MRV_STRICT
    parameters.addParameter(STR16("Bypass"), nullptr, 1, 0.0, ParameterInfo::kCanAutomate | ParameterInfo::kIsBypass,
                            SynthTag(kSynthBypass));
    parameters.addParameter(STR16("Octave"), STR16("oct"), 2, 0.5, ParameterInfo::kCanAutomate, SynthTag(kSynthOctave),
                            kSynthPitchUnit);
#endif
    return kResultOk;
}

tresult PLUGIN_API SynthController::terminate()
{
    Trace("ctrl.terminate");
    return EditControllerEx1::terminate();
}

tresult PLUGIN_API SynthController::connect(IConnectionPoint* other)
{
    Trace("ctrl.connect");
    return EditControllerEx1::connect(other);
}

tresult PLUGIN_API SynthController::disconnect(IConnectionPoint* other)
{
    Trace("ctrl.disconnect");
    return EditControllerEx1::disconnect(other);
}

tresult PLUGIN_API SynthController::notify(IMessage* message)
{
    if (!message || !message->getMessageID())
        return kInvalidArgument;
    IAttributeList* attributes = message->getAttributes();
    const char* id = message->getMessageID();
    if (std::strcmp(id, "TestEdit") == 0 && attributes) {
        int64 tag = 0;
        double value = 0;
        attributes->getInt("id", tag);
        attributes->getFloat("value", value);
        testEdit(static_cast<ParamID>(tag), value);
        return kResultOk;
    }
    if (std::strcmp(id, "TestRestart") == 0 && attributes && componentHandler) {
        int64 flags = 0;
        attributes->getInt("flags", flags);
        if (flags & kMidiCCAssignmentChanged)
            mVolumeController = mVolumeController == 7 ? 11 : 7;
        const tresult result = componentHandler->restartComponent(static_cast<int32>(flags));
        Trace("ctrl.restart flags=%lld result=%d", static_cast<long long>(flags), result);
        return result;
    }
    if (std::strcmp(id, "TestResize") == 0 && attributes && mView) {
        int64 width = 0;
        int64 height = 0;
        attributes->getInt("width", width);
        attributes->getInt("height", height);
        return mView->requestResize(static_cast<int32>(width), static_cast<int32>(height));
    }
    return EditControllerEx1::notify(message);
}

tresult PLUGIN_API SynthController::setComponentState(IBStream* state)
{
    int32 version = 0;
    std::array<double, kSynthParamCount> values{};
    int32 bytesRead = 0;
    if (!state || state->read(&version, sizeof(version), nullptr) != kResultOk || version != kSynthStateVersion ||
        state->read(values.data(), sizeof(values), &bytesRead) != kResultOk || bytesRead != sizeof(values)) {
        Trace("ctrl.setComponentState refused");
        return kResultFalse;
    }
    for (ParamID id = 0; id < kSynthParamCount; ++id)
        EditControllerEx1::setParamNormalized(SynthTag(id), values[id]);
    Trace("ctrl.setComponentState volume=%.6f program=%.6f", values[kSynthVolume], values[kSynthProgram]);
    return kResultOk;
}

tresult PLUGIN_API SynthController::setState(IBStream* state)
{
    double zoom = 0;
    int32 bytesRead = 0;
    if (!state || state->read(&zoom, sizeof(zoom), &bytesRead) != kResultOk || bytesRead != sizeof(zoom)) {
        Trace("ctrl.setState refused");
        return kResultFalse;
    }
    mZoom = zoom;
    Trace("ctrl.setState zoom=%.3f", mZoom);
    return kResultOk;
}

tresult PLUGIN_API SynthController::getState(IBStream* state)
{
    Trace("ctrl.getState");
    if (!state)
        return kInvalidArgument;
    state->write(&mZoom, sizeof(mZoom), nullptr);
    return kResultOk;
}

tresult PLUGIN_API SynthController::setParamNormalized(ParamID tag, ParamValue value)
{
    Trace("ctrl.setParamNormalized id=%u value=%.6f", tag, value);
    // The editor zoom follows the hidden parameter, so state tests can see it.
    if (tag == SynthTag(kSynthHidden))
        mZoom = 1.0 + value;
    return EditControllerEx1::setParamNormalized(tag, value);
}

tresult PLUGIN_API SynthController::setComponentHandler(IComponentHandler* handler)
{
    Trace("ctrl.setComponentHandler %s", handler ? "set" : "null");
    return EditControllerEx1::setComponentHandler(handler);
}

void SynthController::testEdit(ParamID tag, double value)
{
    Trace("ctrl.edit id=%u value=%.6f", tag, value);
    beginEdit(tag);
    EditControllerEx1::setParamNormalized(tag, value);
    performEdit(tag, value);
    endEdit(tag);
}

IPlugView* PLUGIN_API SynthController::createView(FIDString name)
{
    if (!name || std::strcmp(name, ViewType::kEditor) != 0)
        return nullptr;
    Trace("ctrl.createView");
    mView = new SynthView(this);
    // A command-line host has no mouse: the variable stands in for the user
    // moving a control as soon as the editor is up.
    unsigned int tag = 0;
    double value = 0.0;
    const char* edit = std::getenv("MRV_VST3_EDIT_ON_VIEW");
    if (edit && std::sscanf(edit, "%u=%lf", &tag, &value) == 2 && tag - kSynthIdBase < kSynthParamCount && value >= 0.0 && value <= 1.0)
        testEdit(tag, value);
    return mView;
}

void SynthController::viewGone(SynthView* view)
{
    if (mView == view)
        mView = nullptr;
}

tresult PLUGIN_API SynthController::getUnitByBus(MediaType type, BusDirection dir, int32 busIndex, int32 /*channel*/,
                                                 UnitID& unitId)
{
    if (type == kEvent && dir == kInput && busIndex == 0) {
        unitId = kSynthUnit;
        return kResultOk;
    }
    return kResultFalse;
}

tresult PLUGIN_API SynthController::getMidiControllerAssignment(int32 busIndex, int16 /*channel*/,
                                                                CtrlNumber midiControllerNumber, ParamID& id)
{
    if (busIndex != 0)
        return kResultFalse;
    if (midiControllerNumber == mVolumeController) {
        id = SynthTag(kSynthVolume);
        return kResultOk;
    }
    if (midiControllerNumber == kAfterTouch) {
        id = SynthTag(kSynthPressure);
        return kResultOk;
    }
    if (midiControllerNumber == kPitchBend) {
        id = SynthTag(kSynthBend);
        return kResultOk;
    }
    return kResultFalse;
}

}  // namespace MrvTest
