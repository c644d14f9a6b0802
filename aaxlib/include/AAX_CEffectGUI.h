// Base of a plug-in's editor object. The host creates it through the factory
// registered as kAAX_ProcPtrID_Create_EffectGUI, initialises it with the
// instance's effect parameters and opens/closes views with SetViewContainer.
#pragma once

#include <memory>

#include "AAX.h"
#include "AAX_IEffectGUI.h"
#include "AAX_IEffectParameters.h"
#include "AAX_IViewContainer.h"
#include "CACFUnknown.h"

class AAX_VViewContainer;

// AAX_IEffectGUI must stay the first base (see AAX_CEffectParameters).
class AAX_CEffectGUI : public AAX_IEffectGUI, public CACFUnknown {
public:
    ACF_DECLARE_STANDARD_UNKNOWN()

    AAX_CEffectGUI();
    AAX_CEffectGUI(const AAX_CEffectGUI&) = delete;
    AAX_CEffectGUI& operator=(const AAX_CEffectGUI&) = delete;

    ACFRESULT InternalQueryInterface(const acfIID& riid, void** ppvObjOut) override;

    AAX_Result Initialize(IACFUnknown* iController) override;
    AAX_Result Uninitialize() override;
    AAX_Result NotificationReceived(AAX_CTypeID inNotificationType, const void* inNotificationData, uint32_t inNotificationDataSize) override;
    AAX_Result SetViewContainer(IACFUnknown* iViewContainer) override;
    AAX_Result GetViewSize(AAX_Point* oViewSize) const override;
    AAX_Result Draw(AAX_Rect* iDrawRect) override;
    AAX_Result TimerWakeup() override;
    AAX_Result ParameterUpdated(AAX_CParamID inParamID) override;

    // The instance's effect parameters (the real object), null before Initialize.
    AAX_IEffectParameters* GetEffectParameters() { return mEffectParameters; }
    const AAX_IEffectParameters* GetEffectParameters() const { return mEffectParameters; }
    // The open view container, null when no view is open.
    AAX_IViewContainer* GetViewContainer();
    const AAX_IViewContainer* GetViewContainer() const;
    int32_t GetViewContainerType();  // AAX_eViewContainer_Type_NULL without a container
    void* GetViewContainerPtr();

protected:
    ~AAX_CEffectGUI() override;

    // Called at the end of Initialize.
    virtual void CreateViewContents() = 0;
    // Called after a host container was attached; build the editor in it.
    virtual void CreateViewContainer() = 0;
    // Called before the container goes away; tear the editor down.
    virtual void DeleteViewContainer() = 0;

private:
    void CloseViewContainer();

    AAX_IEffectParameters* mEffectParameters = nullptr;  // one reference held
    std::unique_ptr<AAX_VViewContainer> mViewContainer;
};
