// The test instrument's editor: no drawing, only the calls a host makes
// and a resize request on demand.
#pragma once

#include "public.sdk/source/common/pluginview.h"

namespace MrvTest {

class SynthController;

class SynthView : public Steinberg::CPluginView {
public:
    explicit SynthView(SynthController* controller);
    ~SynthView() override;

    Steinberg::tresult PLUGIN_API attached(void* parent, Steinberg::FIDString type) override;
    Steinberg::tresult PLUGIN_API removed() override;
    Steinberg::tresult PLUGIN_API onSize(Steinberg::ViewRect* newSize) override;
    Steinberg::tresult PLUGIN_API setFrame(Steinberg::IPlugFrame* frame) override;

    Steinberg::tresult requestResize(Steinberg::int32 width, Steinberg::int32 height);

private:
    SynthController* mController;
};

}  // namespace MrvTest
