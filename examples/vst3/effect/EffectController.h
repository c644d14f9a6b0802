// The test effect's separate controller: one gain parameter. Refuses to
// initialise when MRV_VST3_FAULT is "controllerinit".
#pragma once

#include "EffectIDs.h"
#include "public.sdk/source/vst/vsteditcontroller.h"

namespace MrvTest {

class EffectController : public Steinberg::Vst::EditController {
public:
    static Steinberg::FUnknown* create();
    Steinberg::tresult PLUGIN_API initialize(Steinberg::FUnknown* context) override;
    Steinberg::tresult PLUGIN_API terminate() override;
    Steinberg::tresult PLUGIN_API setComponentState(Steinberg::IBStream* state) override;
};

}  // namespace MrvTest
