#include "EditorSession.h"

#include <chrono>
#include <cstdio>
#include <thread>

#include "AAX_IEffectGUI.h"
#include "CrashReport.h"
#include "HostInstance.h"
#include "HostViewContainer.h"
#include "ResultText.h"
#include "X11Window.h"

namespace AAXHost {

namespace {
// At most 3 s for an editor's window to appear under a click.
constexpr int kEditorWaitTicks = 300;
}  // namespace

AAX_IACFEffectGUI* CreateEffectGui(CHostInstance& instance, std::string& error, const char* phase)
{
    auto factory = reinterpret_cast<AAX_CreateEffectGUIProc>(instance.GuiFactory());
    if (!factory) {
        error = "the effect registered no GUI factory";
        return nullptr;
    }
    if (phase)
        SetPhase(phase);
    AAX_IEffectGUI* raw = factory();
    if (!raw) {
        error = "the GUI factory returned null";
        return nullptr;
    }
    void* queried = nullptr;
    if (raw->QueryInterface(IID_IAAXEffectGUIV1, &queried) != ACF_OK || !queried) {
        error = "the GUI object does not answer IID_IAAXEffectGUIV1";
        return nullptr;
    }
    auto* gui = static_cast<AAX_IACFEffectGUI*>(queried);
    const AAX_Result r = gui->Initialize(instance.Effect());
    if (r != AAX_SUCCESS) {
        gui->Release();
        error = "GUI Initialize failed with " + ResultText(r);
        return nullptr;
    }
    return gui;
}

CHostViewContainer* AttachViewContainer(AAX_IACFEffectGUI* gui, unsigned long x11Window)
{
    auto* container = new CHostViewContainer(x11Window);
    const AAX_Result set = gui->SetViewContainer(static_cast<AAX_IACFViewContainer*>(container));
    // A view that cannot attach is the plug-in's business, not a host failure.
    if (set != AAX_SUCCESS)
        std::fprintf(stderr, "aaxhost: SetViewContainer answered %d\n", set);
    return container;
}

void DetachEffectGui(AAX_IACFEffectGUI* gui)
{
    gui->SetViewContainer(nullptr);
    gui->Uninitialize();
}

CEditorSession::CEditorSession() = default;
CEditorSession::~CEditorSession() { Close(); }

bool CEditorSession::Open(CHostInstance& instance, std::string& error, bool window)
{
    Close();
    AAX_IACFEffectGUI* gui = CreateEffectGui(instance, error);
    if (!gui)
        return false;
    mGui = gui;
    mInstance = &instance;
    if (CX11Window::WantedAndPossible(window)) {
        mWindow = std::make_unique<CX11Window>();
        if (!mWindow->Open(100, 100, "aaxhost", error)) {
            Close();
            return false;
        }
    }
    mContainer = AttachViewContainer(mGui, mWindow ? mWindow->Id() : 0);
    if (mWindow) {
        AAX_Point size;
        mGui->GetViewSize(&size);
        mWindow->Resize(static_cast<int>(size.horz), static_cast<int>(size.vert));
    }
    return true;
}

bool CEditorSession::Idle(std::string& error)
{
    if (!mGui)
        return true;
    if (mWindow)
        mWindow->Pump();
    mGui->TimerWakeup();
    mInstance->Effect()->TimerWakeup();
    for (; mRequestsSeen < mContainer->Requests().size(); ++mRequestsSeen)
        if (mWindow) {
            const AAX_Point& p = mContainer->Requests()[mRequestsSeen];
            mWindow->Resize(static_cast<int>(p.horz), static_cast<int>(p.vert));
        }
    if (mClickPending && ++mIdles >= 3) {
        mClickPending = false;
        if (!mWindow) {
            error = "--click needs a window: set DISPLAY (xvfb-run gives one)";
            return false;
        }
        // A render runs faster than the server shows the editor's window:
        // wait (with its timer running) until the point is on the editor.
        for (int wait = 0; wait < kEditorWaitTicks && !mWindow->HasChildAt(mClickX, mClickY); ++wait) {
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
            mWindow->Pump();
            mGui->TimerWakeup();
        }
        return mWindow->Click(mClickX, mClickY, error);
    }
    return true;
}

void CEditorSession::Close()
{
    if (!mGui)
        return;
    DetachEffectGui(mGui);
    mGui->Release();
    mContainer->Release();
    mGui = nullptr;
    mContainer = nullptr;
    mInstance = nullptr;
    mWindow.reset();
    mRequestsSeen = 0;
    mIdles = 0;
}

}  // namespace AAXHost
