// Editor hosting of the VST 2 fake host: the effect's editor lives in the
// native view the AAX view container provides.
#include "AAX_IViewContainer.h"
#include "logger/CLog.h"
#include "vst2/CFakeHostVST2.h"

namespace {
char gCockosViewQuery[] = "hasCockosViewAsConfig";
}

void CFakeHostVST2::DoCreateGUI(AAX_IViewContainer* container)
{
    needsResize = true;
    viewContainer = container;
    if (effect == nullptr || container == nullptr)
        return;
    ERect* rect = nullptr;
    Dispatch(effEditGetRect, 0, 0, &rect);
    Dispatch(effCanDo, 0, 0, gCockosViewQuery);
    // Editors build their window inside the parent at once; without one
    // (a host with no windowing system) some abort or crash, so they are
    // not opened at all. On Linux the parent is an X11 window ID.
    void* parent = container->GetPtr();
    if (parent == nullptr) {
        MV_LOG_AT("gui", kLogWarning, "CreateGUI", "The view container has no native view: editor not opened");
        return;
    }
    Dispatch(effEditOpen, 0, 0, parent);
}

void CFakeHostVST2::DoQuitGUI()
{
    if (effect != nullptr) {
        MV_LOG_AT("gui", kLogInfo, "QuitGUI", "HOST> Close editor...");
        Dispatch(effEditClose);
    }
    viewContainer = nullptr;
    needsResize = false;
}

SViewSize CFakeHostVST2::DoGetViewSize()
{
    SViewSize size;
    if (effect == nullptr)
        return size;
    MV_LOG_AT("gui", kLogInfo, "GetViewSize", "Ask Get View Size...");
    ERect* eRect = nullptr;
    Dispatch(effEditGetRect, 0, 0, &eRect);
    MV_COND_ASSERT("gui", eRect != nullptr, "eRect != 0");
    // Unlike the rest of this path, reading through a null rectangle would
    // crash the host: no size then.
    if (eRect == nullptr)
        return size;
    size.known = true;
    size.width = static_cast<float>(eRect->right - eRect->left);
    size.height = static_cast<float>(eRect->bottom - eRect->top);
    MV_LOG("gui", kLogInfo, "VST2 Get View Size Width = ", size.width, " - Height = ", size.height);
    MV_LOG("gui", kLogDebug, "\n[LOG] ## ", "eRect->bottom", " = ", eRect->bottom, "\n[LOG] ## ", "eRect->top", " = ",
           eRect->top, "\n[LOG] ## ", "eRect->right", " = ", eRect->right, "\n[LOG] ## ", "eRect->left", " = ",
           eRect->left);
    return size;
}

int32_t CFakeHostVST2::DoTimerWakeup()
{
    if (effect == nullptr)
        return 0;
    Dispatch(effEditIdle);
    if (needsResize && viewContainer != nullptr) {
        ERect* eRect = nullptr;
        Dispatch(effEditGetRect, 0, 0, &eRect);
        MV_COND_ASSERT("gui", eRect != nullptr, "eRect != 0");
        if (eRect == nullptr)
            return 0;
        const int height = eRect->bottom - eRect->top;
        const int width = eRect->right - eRect->left;
        MV_LOG("gui", kLogInfo, "VST2 - TimerWakeup set view size to ", height, "x", width);
        AAX_Point size(static_cast<float>(height), static_cast<float>(width));
        viewContainer->SetViewSize(size);
        needsResize = false;
    }
    return 0;
}
