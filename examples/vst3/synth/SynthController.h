// The test instrument's edit controller: parameters, a program list in a
// unit, MIDI controller mapping, a small editor, and test hooks reached
// through connection-point messages ("TestEdit", "TestRestart", "TestResize")
// and, for hosts driven from the command line, an edit made when the editor
// view is created (MRV_VST3_EDIT_ON_VIEW="<id>=<value>").
#pragma once

#include "SynthIDs.h"
#include "pluginterfaces/vst/ivsteditcontroller.h"
#include "public.sdk/source/vst/vsteditcontroller.h"

namespace MrvTest {

class SynthView;

class SynthController : public Steinberg::Vst::EditControllerEx1, public Steinberg::Vst::IMidiMapping {
public:
    static Steinberg::FUnknown* create();

    Steinberg::tresult PLUGIN_API initialize(Steinberg::FUnknown* context) override;
    Steinberg::tresult PLUGIN_API terminate() override;
    Steinberg::tresult PLUGIN_API connect(Steinberg::Vst::IConnectionPoint* other) override;
    Steinberg::tresult PLUGIN_API disconnect(Steinberg::Vst::IConnectionPoint* other) override;
    Steinberg::tresult PLUGIN_API notify(Steinberg::Vst::IMessage* message) override;
    Steinberg::tresult PLUGIN_API setComponentState(Steinberg::IBStream* state) override;
    Steinberg::tresult PLUGIN_API setState(Steinberg::IBStream* state) override;
    Steinberg::tresult PLUGIN_API getState(Steinberg::IBStream* state) override;
    Steinberg::tresult PLUGIN_API setParamNormalized(Steinberg::Vst::ParamID tag, Steinberg::Vst::ParamValue value) override;
    Steinberg::tresult PLUGIN_API setComponentHandler(Steinberg::Vst::IComponentHandler* handler) override;
    Steinberg::IPlugView* PLUGIN_API createView(Steinberg::FIDString name) override;
    Steinberg::tresult PLUGIN_API getUnitByBus(Steinberg::Vst::MediaType type, Steinberg::Vst::BusDirection dir,
                                               Steinberg::int32 busIndex, Steinberg::int32 channel,
                                               Steinberg::Vst::UnitID& unitId) override;

    Steinberg::tresult PLUGIN_API getMidiControllerAssignment(Steinberg::int32 busIndex, Steinberg::int16 channel,
                                                              Steinberg::Vst::CtrlNumber midiControllerNumber,
                                                              Steinberg::Vst::ParamID& id) override;

    OBJ_METHODS(SynthController, Steinberg::Vst::EditControllerEx1)
    DEFINE_INTERFACES
        DEF_INTERFACE(Steinberg::Vst::IMidiMapping)
    END_DEFINE_INTERFACES(Steinberg::Vst::EditControllerEx1)
    REFCOUNT_METHODS(Steinberg::Vst::EditControllerEx1)

    void viewGone(SynthView* view);
    // A user's gesture as the editor makes it: begin, perform, end.
    void testEdit(Steinberg::Vst::ParamID tag, double value);

private:

    Steinberg::Vst::CtrlNumber mVolumeController = 7;
    double mZoom = 1.0;
    SynthView* mView = nullptr;
};

}  // namespace MrvTest
