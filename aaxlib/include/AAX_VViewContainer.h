// Plug-in side proxy of the host's view container (the editor's parent window).
#pragma once

#include "AAX_IViewContainer.h"

class AAX_VViewContainer : public AAX_IViewContainer {
public:
    explicit AAX_VViewContainer(IACFUnknown* pUnknown);
    ~AAX_VViewContainer() override;
    AAX_VViewContainer(const AAX_VViewContainer&) = delete;
    AAX_VViewContainer& operator=(const AAX_VViewContainer&) = delete;

    bool IsValid() const { return mIViewContainer != nullptr; }
    int32_t GetType() override;  // AAX_eViewContainer_Type_NULL without a host object
    void* GetPtr() override;
    AAX_Result GetModifiers(uint32_t* outModifiers) override;
    AAX_Result SetViewSize(AAX_Point& inSize) override;

private:
    AAX_IACFViewContainer* mIViewContainer = nullptr;
};
