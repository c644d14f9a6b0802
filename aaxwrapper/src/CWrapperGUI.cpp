#include "CWrapperGUI.h"

#include "AAXWrapper_Parameters.h"
#include "fakehost/FakeHostGuard.h"
#include "logger/CLog.h"
#include "fakehost/IFakeHost.h"

AAX_IEffectGUI* CWrapperGUI::Create()
{
    MV_LOG("gui", kLogDebug, "create gui aax callback");
    return new CWrapperGUI;
}

CWrapperGUI::CWrapperGUI()
{
    MV_LOG("gui", kLogDebug, "CWrapperGUI::CTOR");
}

CWrapperGUI::~CWrapperGUI()
{
    MV_LOG("gui", kLogDebug, "CWrapperGUI::DTOR");
    mFakeHost = nullptr;
}

void CWrapperGUI::CreateViewContents()
{
    MV_LOG("gui", kLogDebug, "CreateViewContents");
}

void CWrapperGUI::CreateViewContainer()
{
    MV_LOG("gui", kLogDebug, "CreateViewContainer");
    // A view paired with some other data model has nothing to show.
    auto* const wrapper = dynamic_cast<AAXWrapper_Parameters*>(GetEffectParameters());
    mFakeHost = wrapper != nullptr ? wrapper->GetFakeHost() : nullptr;
    if (mFakeHost != nullptr)
        CallFakeHost("CreateGUI", [&] { mFakeHost->CreateGUI(GetViewContainer()); });
}

void CWrapperGUI::DeleteViewContainer()
{
    MV_LOG("gui", kLogDebug, "DeleteViewContainer");
    if (mFakeHost != nullptr)
        CallFakeHost("QuitGUI", [&] { mFakeHost->QuitGUI(); });
}

AAX_Result CWrapperGUI::GetViewSize(AAX_Point* oEffectViewSize) const
{
    MV_LOG("gui", kLogDebug, "GetViewSize");
    if (mFakeHost != nullptr && oEffectViewSize != nullptr)
        CallFakeHost("GetViewSize",
                     [&] { mFakeHost->GetViewSize(oEffectViewSize->horz, oEffectViewSize->vert); });
    return AAX_SUCCESS;
}

AAX_Result CWrapperGUI::TimerWakeup()
{
    if (mFakeHost != nullptr)
        CallFakeHost("TimerWakeup", [&] { mFakeHost->TimerWakeup(); });
    return AAX_SUCCESS;
}
