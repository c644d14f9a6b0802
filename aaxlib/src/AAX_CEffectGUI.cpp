#include "AAX_CEffectGUI.h"

#include "AAX_VViewContainer.h"

AAX_CEffectGUI::AAX_CEffectGUI() = default;

AAX_CEffectGUI::~AAX_CEffectGUI()
{
    // A host that released us without Uninitialize still gets its reference back.
    if (mEffectParameters != nullptr) {
        mEffectParameters->Release();
        mEffectParameters = nullptr;
    }
}

ACFRESULT AAX_CEffectGUI::InternalQueryInterface(const acfIID& riid, void** ppvObjOut)
{
    if (ppvObjOut == nullptr) return ACF_E_POINTER;
    if (riid == IID_IAAXEffectGUIV1) {
        *ppvObjOut = static_cast<AAX_IACFEffectGUI*>(this);
        AddRef();
        return ACF_OK;
    }
    return CACFUnknown::InternalQueryInterface(riid, ppvObjOut);
}

AAX_Result AAX_CEffectGUI::Initialize(IACFUnknown* iController)
{
    if (iController == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    void* effect = nullptr;
    if (iController->QueryInterface(IID_IAAXEffectParametersV1, &effect) != ACF_OK || effect == nullptr)
        return AAX_ERROR_NULL_OBJECT;
    if (mEffectParameters != nullptr) mEffectParameters->Release();
    // The interface answered is AAX_IACFEffectParameters; plug-in objects
    // derive from AAX_IEffectParameters, which shares its address.
    mEffectParameters = static_cast<AAX_IEffectParameters*>(static_cast<AAX_IACFEffectParameters*>(effect));
    CreateViewContents();
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectGUI::Uninitialize()
{
    CloseViewContainer();
    if (mEffectParameters != nullptr) {
        mEffectParameters->Release();
        mEffectParameters = nullptr;
    }
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectGUI::NotificationReceived(AAX_CTypeID, const void*, uint32_t) { return AAX_SUCCESS; }

AAX_Result AAX_CEffectGUI::SetViewContainer(IACFUnknown* iViewContainer)
{
    if (iViewContainer == nullptr) {
        CloseViewContainer();
        return AAX_SUCCESS;
    }
    CloseViewContainer();  // a host re-parenting us without closing first
    mViewContainer.reset(new AAX_VViewContainer(iViewContainer));
    CreateViewContainer();
    return AAX_SUCCESS;
}

void AAX_CEffectGUI::CloseViewContainer()
{
    if (!mViewContainer) return;
    DeleteViewContainer();
    mViewContainer.reset();
}

AAX_Result AAX_CEffectGUI::GetViewSize(AAX_Point* oViewSize) const
{
    if (oViewSize == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    *oViewSize = AAX_Point();
    return AAX_SUCCESS;
}

AAX_Result AAX_CEffectGUI::Draw(AAX_Rect*) { return AAX_SUCCESS; }

AAX_Result AAX_CEffectGUI::TimerWakeup() { return AAX_SUCCESS; }

AAX_Result AAX_CEffectGUI::ParameterUpdated(AAX_CParamID) { return AAX_SUCCESS; }

AAX_IViewContainer* AAX_CEffectGUI::GetViewContainer() { return mViewContainer.get(); }

const AAX_IViewContainer* AAX_CEffectGUI::GetViewContainer() const { return mViewContainer.get(); }

int32_t AAX_CEffectGUI::GetViewContainerType()
{
    return mViewContainer ? mViewContainer->GetType() : static_cast<int32_t>(AAX_eViewContainer_Type_NULL);
}

void* AAX_CEffectGUI::GetViewContainerPtr() { return mViewContainer ? mViewContainer->GetPtr() : nullptr; }
