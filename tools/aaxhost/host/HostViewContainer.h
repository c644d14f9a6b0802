// The window area given to a plug-in's view. This host has no windowing
// system to offer, so the container is of type NULL with no native view; it
// records the sizes the plug-in asks for.
#pragma once

#include <vector>

#include "AAX_IViewContainer.h"
#include "RefCount.h"

namespace AAXHost {

class CHostViewContainer final : public CHostUnknown<AAX_IACFViewContainer> {
public:
    int32_t GetType() override { return AAX_eViewContainer_Type_NULL; }
    void* GetPtr() override { return nullptr; }
    AAX_Result GetModifiers(uint32_t* modifiers) override;
    AAX_Result SetViewSize(AAX_Point& size) override;

    const std::vector<AAX_Point>& Requests() const { return mRequests; }

private:
    ~CHostViewContainer() override = default;
    ACFRESULT AnswerQuery(const acfIID& iid, void** out) override;

    std::vector<AAX_Point> mRequests;
};

}  // namespace AAXHost
