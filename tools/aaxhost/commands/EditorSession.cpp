#include "EditorSession.h"

#include <cstdio>

#include "AAX_IEffectGUI.h"
#include "CrashReport.h"
#include "HostInstance.h"
#include "HostViewContainer.h"
#include "ResultText.h"

namespace AAXHost {

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

bool CEditorSession::Open(CHostInstance& instance, std::string& error)
{
    Close();
    AAX_IACFEffectGUI* gui = CreateEffectGui(instance, error);
    if (!gui)
        return false;
    mGui = gui;
    mInstance = &instance;
    mContainer = AttachViewContainer(mGui);
    return true;
}

void CEditorSession::Idle()
{
    if (!mGui)
        return;
    mGui->TimerWakeup();
    mInstance->Effect()->TimerWakeup();
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
}

}  // namespace AAXHost
