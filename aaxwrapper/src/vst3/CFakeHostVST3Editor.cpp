// Editor hosting of the VST 3 fake host: the plug-in's view inside the
// window the AAX host provides.
#include "vst3/CFakeHostVST3.h"

#include "AAX_IViewContainer.h"
#include "logger/CLog.h"
#include "vst3/CPlugFrame.h"
#include "vst3/CVST3Loader.h"

using namespace Steinberg;
using namespace Steinberg::Vst;

void CFakeHostVST3::DoCreateGUI(AAX_IViewContainer* container)
{
    if (!container)
        return;
    FIDString platformType = nullptr;
    const int32_t type = container->GetType();
    switch (type) {
    case AAX_eViewContainer_Type_HWND:
        MV_LOG_AT("gui", kLogDebug, "CreateGUI", "View container type HWND");
        platformType = kPlatformTypeHWND;
        break;
    case AAX_eViewContainer_Type_NSView:
        MV_LOG_AT("gui", kLogDebug, "CreateGUI", "View container type NSView");
        platformType = kPlatformTypeNSView;
        break;
    case AAX_eViewContainer_Type_UIView:
        MV_LOG("gui", kLogDebug, "View container type UIView");
        MV_LOG_AT("fakehost", kLogError, "CreateGUI", "UIView container: attached as HIView");
        platformType = kPlatformTypeHIView;
        break;
    case AAX_eViewContainer_Type_X11Window:
        MV_LOG_AT("gui", kLogDebug, "CreateGUI", "View container type X11 window");
        platformType = kPlatformTypeX11EmbedWindowID;
        break;
    case AAX_eViewContainer_Type_NULL:
        MV_LOG_AT("gui", kLogError, "CreateGUI", "View container without type");
        break;
    default:
        MV_LOG_AT("fakehost", kLogError, "CreateGUI", "Unknown view container type ", type);
        break;
    }

    IEditController* controller = mVst3Loader ? mVst3Loader->getController() : nullptr;
    if (!mView && controller) {
        auto lock = mVst3Loader->lockControllerAccess();
        mView = controller->createView(ViewType::kEditor);
    }
    if (!mView) {
        MV_LOG("gui", kLogError, "Standard View not created by Controller");
        return;
    }
    void* parent = container->GetPtr();
    if (!parent) {
        MV_LOG("gui", kLogError, "Standard View not created by Controller");
        return;
    }
    if (type == AAX_eViewContainer_Type_X11Window) {
        AttachX11(container, parent);
        return;
    }
    mView->attached(parent, platformType);

    // A second CreateGUI replaces the frame: the old one must not leak.
    CPlugFrame* previous = mPlugFrame;
    mPlugFrame = new CPlugFrame(container);
    mView->setFrame(mPlugFrame);
    delete previous;
}

// Linux, as the VST 3 documentation has it: the view is asked whether it
// can embed into an X11 window, and gets its frame first, since it finds
// the host's run loop (IRunLoop) through the frame while it attaches.
void CFakeHostVST3::AttachX11(AAX_IViewContainer* container, void* parent)
{
    if (mView->isPlatformTypeSupported(kPlatformTypeX11EmbedWindowID) != kResultTrue) {
        MV_LOG_AT("gui", kLogError, "CreateGUI", "The editor cannot embed into an X11 window");
        return;
    }
    CPlugFrame* previous = mPlugFrame;
    mPlugFrame = new CPlugFrame(container, true);
    mView->setFrame(mPlugFrame);
    delete previous;
    if (mView->attached(parent, kPlatformTypeX11EmbedWindowID) != kResultOk)
        MV_LOG_AT("gui", kLogError, "CreateGUI", "The editor refused to attach to the X11 window");
}

int32_t CFakeHostVST3::DoTimerWakeup()
{
    if (mPlugFrame)
        mPlugFrame->ServiceRunLoop();
    return 0;
}

void CFakeHostVST3::DoQuitGUI()
{
    if (!mView)
        return;
    IPlugView* view = mView;
    CPlugFrame* frame = mPlugFrame;
    mView = nullptr;
    mPlugFrame = nullptr;
    view->setFrame(nullptr);
    view->removed();
    delete frame;  // gives back the handlers the view did not unregister
    const uint32 ret = view->release();
    MV_COND_ASSERT("fakehost", ret == 0, "ret == 0", " mView not released");
}

SViewSize CFakeHostVST3::DoGetViewSize()
{
    SViewSize size;
    if (!mView)
        return size;
    ViewRect rect(0, 0, 0, 0);
    mView->getSize(&rect);
    size.known = true;
    size.width = static_cast<float>(rect.right - rect.left);
    size.height = static_cast<float>(rect.bottom - rect.top);
    return size;
}
