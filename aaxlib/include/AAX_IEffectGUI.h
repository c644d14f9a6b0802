// The view family on the plug-in side: the effect's GUI object, created by
// the factory registered with kAAX_ProcPtrID_Create_EffectGUI.
#pragma once

#include "ACFBase.h"
#include "AAX.h"

inline constexpr acfIID IID_IAAXEffectGUIV1 = {0x4D72766E, 0x0302, 0x4141, {0x58, 0x45, 0x66, 0x47, 0x55, 0x49, 0x56, 0x31}};

class AAX_IACFEffectGUI : public IACFUnknown {
public:
    // iController is the effect parameters object of the same instance.
    virtual AAX_Result Initialize(IACFUnknown* iController) = 0;
    virtual AAX_Result Uninitialize() = 0;
    virtual AAX_Result NotificationReceived(AAX_CTypeID inNotificationType, const void* inNotificationData, uint32_t inNotificationDataSize) = 0;
    // A non-null container opens the view; null closes it.
    virtual AAX_Result SetViewContainer(IACFUnknown* iViewContainer) = 0;
    virtual AAX_Result GetViewSize(AAX_Point* oViewSize) const = 0;
    virtual AAX_Result Draw(AAX_Rect* iDrawRect) = 0;
    virtual AAX_Result TimerWakeup() = 0;
    virtual AAX_Result ParameterUpdated(AAX_CParamID inParamID) = 0;

protected:
    ~AAX_IACFEffectGUI() = default;
};

class AAX_IEffectGUI : public AAX_IACFEffectGUI {
protected:
    ~AAX_IEffectGUI() = default;
};

// Signature of the factory registered with kAAX_ProcPtrID_Create_EffectGUI.
typedef AAX_IEffectGUI* (*AAX_CreateEffectGUIProc)();
