#include "CWrapperGUI.h"

#include "AAXWrapper_Parameters.h"
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
        mFakeHost->CreateGUI(GetViewContainer());
}

void CWrapperGUI::DeleteViewContainer()
{
    MV_LOG("gui", kLogDebug, "DeleteViewContainer");
    if (mFakeHost != nullptr)
        mFakeHost->QuitGUI();
}

AAX_Result CWrapperGUI::GetViewSize(AAX_Point* oEffectViewSize) const
{
    MV_LOG("gui", kLogDebug, "GetViewSize");
    if (mFakeHost != nullptr && oEffectViewSize != nullptr) {
        // A plug-in that gives no size leaves the host's as it was.
        const SViewSize size = mFakeHost->GetViewSize();
        if (size.known) {
            oEffectViewSize->horz = size.width;
            oEffectViewSize->vert = size.height;
        }
    }
    return AAX_SUCCESS;
}

AAX_Result CWrapperGUI::TimerWakeup()
{
    if (mFakeHost != nullptr)
        mFakeHost->TimerWakeup();
    return AAX_SUCCESS;
}
