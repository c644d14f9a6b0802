#include "SynthView.h"

#include "../common/CTrace.h"
#include "SynthController.h"

namespace MrvTest {

using namespace Steinberg;

namespace {
const ViewRect kInitialRect(0, 0, 400, 300);
}

SynthView::SynthView(SynthController* controller) : CPluginView(&kInitialRect), mController(controller) {}

SynthView::~SynthView()
{
    Trace("view.destroyed");
    if (mController)
        mController->viewGone(this);
}

tresult PLUGIN_API SynthView::attached(void* parent, FIDString type)
{
    Trace("view.attached parent=%p type=%s", parent, type ? type : "(null)");
    return CPluginView::attached(parent, type);
}

tresult PLUGIN_API SynthView::removed()
{
    Trace("view.removed");
    return CPluginView::removed();
}

tresult PLUGIN_API SynthView::onSize(ViewRect* newSize)
{
    Trace("view.onSize");
    return CPluginView::onSize(newSize);
}

tresult PLUGIN_API SynthView::setFrame(IPlugFrame* frame)
{
    Trace("view.setFrame %s", frame ? "set" : "null");
    return CPluginView::setFrame(frame);
}

tresult SynthView::requestResize(int32 width, int32 height)
{
    if (!plugFrame)
        return kResultFalse;
    ViewRect wanted(0, 0, width, height);
    setRect(wanted);
    return plugFrame->resizeView(this, &wanted);
}

}  // namespace MrvTest
