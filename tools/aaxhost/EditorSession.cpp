#include "EditorSession.h"

#include <cstdio>

#include "AAX_IEffectGUI.h"
#include "HostInstance.h"
#include "HostViewContainer.h"
#include "ResultText.h"

namespace AAXHost {

bool CEditorSession::Open(CHostInstance& instance, std::string& error)
{
    Close();
    auto factory = reinterpret_cast<AAX_CreateEffectGUIProc>(instance.GuiFactory());
    if (!factory) {
        error = "the effect registered no GUI factory";
        return false;
    }
    AAX_IEffectGUI* raw = factory();
    if (!raw) {
        error = "the GUI factory returned null";
        return false;
    }
    void* queried = nullptr;
    if (raw->QueryInterface(IID_IAAXEffectGUIV1, &queried) != ACF_OK || !queried) {
        error = "the GUI object does not answer IID_IAAXEffectGUIV1";
        return false;
    }
    auto* gui = static_cast<AAX_IACFEffectGUI*>(queried);
    const AAX_Result r = gui->Initialize(instance.Effect());
    if (r != AAX_SUCCESS) {
        gui->Release();
        error = "GUI Initialize failed with " + ResultText(r);
        return false;
    }
    mGui = gui;
    mInstance = &instance;
    mContainer = new CHostViewContainer;
    const AAX_Result set = mGui->SetViewContainer(static_cast<AAX_IACFViewContainer*>(mContainer));
    // The gui command reports this the same way: a view that cannot attach
    // is the plug-in's business, not a host failure.
    if (set != AAX_SUCCESS)
        std::fprintf(stderr, "aaxhost: SetViewContainer answered %d\n", set);
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
    mGui->SetViewContainer(nullptr);
    mGui->Uninitialize();
    mGui->Release();
    mContainer->Release();
    mGui = nullptr;
    mContainer = nullptr;
    mInstance = nullptr;
}

}  // namespace AAXHost
