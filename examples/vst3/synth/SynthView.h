// The test instrument's editor: the calls a host makes, a resize request on
// demand, and on Linux a small X11 editor (a known pattern, a button that
// mutes, a control that grows the view) served by the host's run loop.
#pragma once

#include <memory>

#include "public.sdk/source/common/pluginview.h"
#ifdef MRV_HAS_X11_EDITOR
#include "X11TestEditor.h"
#include "pluginterfaces/gui/iplugview.h"
#endif

namespace MrvTest {

class SynthController;

class SynthView : public Steinberg::CPluginView {
public:
    explicit SynthView(SynthController* controller);
    ~SynthView() override;

    // Every platform type this family of hosts hands out; only X11 draws.
    Steinberg::tresult PLUGIN_API isPlatformTypeSupported(Steinberg::FIDString type) override;
    Steinberg::tresult PLUGIN_API attached(void* parent, Steinberg::FIDString type) override;
    Steinberg::tresult PLUGIN_API removed() override;
    Steinberg::tresult PLUGIN_API onSize(Steinberg::ViewRect* newSize) override;
    Steinberg::tresult PLUGIN_API setFrame(Steinberg::IPlugFrame* frame) override;

    Steinberg::tresult requestResize(Steinberg::int32 width, Steinberg::int32 height);

private:
    SynthController* mController;
#ifdef MRV_HAS_X11_EDITOR
    void openX11Editor(void* parent);
    void closeX11Editor();

    class RunLoopClient;
    MrvEditor::CX11TestEditor mEditor;
    std::unique_ptr<RunLoopClient> mClient;
    Steinberg::Linux::IRunLoop* mRunLoop = nullptr;
#endif
};

}  // namespace MrvTest
