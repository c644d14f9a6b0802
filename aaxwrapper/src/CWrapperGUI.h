// The effect's AAX view: draws nothing itself, it lends the host's window to
// the wrapped plug-in's own editor through the instance's fake host.
#pragma once

#include "AAX_CEffectGUI.h"

class IFakeHost;

class CWrapperGUI : public AAX_CEffectGUI {
public:
    static AAX_IEffectGUI* Create();

    CWrapperGUI();

    AAX_Result GetViewSize(AAX_Point* oEffectViewSize) const override;
    AAX_Result TimerWakeup() override;
    ~CWrapperGUI() override;

protected:
    void CreateViewContents() override;
    void CreateViewContainer() override;
    void DeleteViewContainer() override;

private:
    // Borrowed from the instance's AAXWrapper_Parameters; never deleted here.
    IFakeHost* mFakeHost = nullptr;
};
