#include "SynthView.h"

#include <cstring>

#include "../common/CTrace.h"
#include "SynthController.h"

namespace MrvTest {

using namespace Steinberg;

namespace {
const ViewRect kInitialRect(0, 0, 400, 300);
}

#ifdef MRV_HAS_X11_EDITOR
// What the run loop calls: the X connection became readable, or the timer
// fired. Either way the editor handles what is pending. Owned by the view.
class SynthView::RunLoopClient final : public Linux::IEventHandler, public Linux::ITimerHandler {
public:
    explicit RunLoopClient(MrvEditor::CX11TestEditor& editor) : mEditor(editor) {}
    void PLUGIN_API onFDIsSet(Linux::FileDescriptor) override { mEditor.Idle(); }
    void PLUGIN_API onTimer() override { mEditor.Idle(); }
    tresult PLUGIN_API queryInterface(const TUID iid, void** obj) override
    {
        if (FUnknownPrivate::iidEqual(iid, Linux::IEventHandler::iid)) {
            *obj = static_cast<Linux::IEventHandler*>(this);
            return kResultOk;
        }
        if (FUnknownPrivate::iidEqual(iid, Linux::ITimerHandler::iid)) {
            *obj = static_cast<Linux::ITimerHandler*>(this);
            return kResultOk;
        }
        *obj = nullptr;
        return kNoInterface;
    }
    uint32 PLUGIN_API addRef() override { return 1; }
    uint32 PLUGIN_API release() override { return 1; }

private:
    MrvEditor::CX11TestEditor& mEditor;
};
#endif

SynthView::SynthView(SynthController* controller) : CPluginView(&kInitialRect), mController(controller) {}

SynthView::~SynthView()
{
    Trace("view.destroyed");
#ifdef MRV_HAS_X11_EDITOR
    closeX11Editor();
#endif
    if (mController)
        mController->viewGone(this);
}

tresult PLUGIN_API SynthView::isPlatformTypeSupported(FIDString type)
{
    for (FIDString known : {kPlatformTypeX11EmbedWindowID, kPlatformTypeNSView, kPlatformTypeHWND, kPlatformTypeHIView})
        if (type && std::strcmp(type, known) == 0)
            return kResultTrue;
    return kResultFalse;
}

tresult PLUGIN_API SynthView::attached(void* parent, FIDString type)
{
    Trace("view.attached parent=%p type=%s", parent, type ? type : "(null)");
    const tresult result = CPluginView::attached(parent, type);
#ifdef MRV_HAS_X11_EDITOR
    if (type && std::strcmp(type, kPlatformTypeX11EmbedWindowID) == 0)
        openX11Editor(parent);
#endif
    return result;
}

tresult PLUGIN_API SynthView::removed()
{
    Trace("view.removed");
#ifdef MRV_HAS_X11_EDITOR
    closeX11Editor();
#endif
    return CPluginView::removed();
}

#ifdef MRV_HAS_X11_EDITOR
void SynthView::openX11Editor(void* parent)
{
    // The host's run loop is reached through the frame, set before attached.
    Linux::IRunLoop* runLoop = nullptr;
    if (!plugFrame || plugFrame->queryInterface(Linux::IRunLoop::iid, reinterpret_cast<void**>(&runLoop)) != kResultOk ||
        !runLoop) {
        Trace("view.x11 no run loop");
        return;
    }
    MrvEditor::CX11TestEditor::SHandlers handlers;
    handlers.onButton = [this] {
        if (mController)
            mController->testEdit(SynthTag(kSynthVolume), 0.0);
    };
    handlers.onGrow = [this] {
        const int32 width = getRect().getWidth();
        const int32 height = getRect().getHeight() + MrvEditor::kGrowStep;
        requestResize(width, height);
        mEditor.Resize(width, height);
    };
    if (!mEditor.Open(reinterpret_cast<uintptr_t>(parent), getRect().getWidth(), getRect().getHeight(),
                      std::move(handlers))) {
        runLoop->release();
        return;
    }
    mRunLoop = runLoop;
    mClient = std::make_unique<RunLoopClient>(mEditor);
    mRunLoop->registerEventHandler(mClient.get(), mEditor.FileDescriptor());
    mRunLoop->registerTimer(mClient.get(), 30);
    Trace("view.x11 open");
}

void SynthView::closeX11Editor()
{
    if (mRunLoop) {
        mRunLoop->unregisterEventHandler(mClient.get());
        mRunLoop->unregisterTimer(mClient.get());
        mRunLoop->release();
        mRunLoop = nullptr;
    }
    mEditor.Close();
    mClient.reset();
}
#endif

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
