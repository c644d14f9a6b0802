// A gain effect whose processor is also its edit controller: one object.
#pragma once

#include "EffectProcessor.h"
#include "pluginterfaces/vst/ivsteditcontroller.h"

namespace MrvTest {

class SingleEffect : public EffectProcessor, public Steinberg::Vst::IEditController {
public:
    static Steinberg::FUnknown* create();

    Steinberg::tresult PLUGIN_API initialize(Steinberg::FUnknown* context) override;
    Steinberg::tresult PLUGIN_API terminate() override;
    Steinberg::tresult PLUGIN_API connect(Steinberg::Vst::IConnectionPoint* other) override;

    Steinberg::tresult PLUGIN_API setComponentState(Steinberg::IBStream* state) override;
    Steinberg::int32 PLUGIN_API getParameterCount() override { return 1; }
    Steinberg::tresult PLUGIN_API getParameterInfo(Steinberg::int32 paramIndex, Steinberg::Vst::ParameterInfo& info) override;
    Steinberg::tresult PLUGIN_API getParamStringByValue(Steinberg::Vst::ParamID id, Steinberg::Vst::ParamValue valueNormalized,
                                                        Steinberg::Vst::String128 string) override;
    Steinberg::tresult PLUGIN_API getParamValueByString(Steinberg::Vst::ParamID id, Steinberg::Vst::TChar* string,
                                                        Steinberg::Vst::ParamValue& valueNormalized) override;
    Steinberg::Vst::ParamValue PLUGIN_API normalizedParamToPlain(Steinberg::Vst::ParamID, Steinberg::Vst::ParamValue v) override { return v; }
    Steinberg::Vst::ParamValue PLUGIN_API plainParamToNormalized(Steinberg::Vst::ParamID, Steinberg::Vst::ParamValue v) override { return v; }
    Steinberg::Vst::ParamValue PLUGIN_API getParamNormalized(Steinberg::Vst::ParamID id) override;
    Steinberg::tresult PLUGIN_API setParamNormalized(Steinberg::Vst::ParamID id, Steinberg::Vst::ParamValue value) override;
    Steinberg::tresult PLUGIN_API setComponentHandler(Steinberg::Vst::IComponentHandler* handler) override;
    Steinberg::IPlugView* PLUGIN_API createView(Steinberg::FIDString) override { return nullptr; }

    // IEditController and IComponent both declare these; one answer for both.
    Steinberg::tresult PLUGIN_API setState(Steinberg::IBStream* state) override { return EffectProcessor::setState(state); }
    Steinberg::tresult PLUGIN_API getState(Steinberg::IBStream* state) override { return EffectProcessor::getState(state); }

    OBJ_METHODS(SingleEffect, EffectProcessor)
    DEFINE_INTERFACES
        DEF_INTERFACE(Steinberg::Vst::IEditController)
    END_DEFINE_INTERFACES(EffectProcessor)
    REFCOUNT_METHODS(EffectProcessor)

private:
    double mControllerGain = 1.0;
};

}  // namespace MrvTest
