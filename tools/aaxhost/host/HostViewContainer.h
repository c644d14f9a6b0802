// The window area given to a plug-in's view: type NULL with no native view
// when there is no display, else an X11 window (our own container type on
// Linux, whose pointer carries the window ID). It records the sizes the
// plug-in asks for; the session resizes the window to follow them.
#pragma once

#include <cstdint>
#include <vector>

#include "AAX_IViewContainer.h"
#include "RefCount.h"

namespace AAXHost {

class CHostViewContainer final : public CHostUnknown<AAX_IACFViewContainer> {
public:
    CHostViewContainer() = default;
    explicit CHostViewContainer(unsigned long x11Window)
        : mType(x11Window != 0 ? AAX_eViewContainer_Type_X11Window : AAX_eViewContainer_Type_NULL),
          mNative(reinterpret_cast<void*>(static_cast<uintptr_t>(x11Window)))
    {
    }
    int32_t GetType() override { return mType; }
    void* GetPtr() override { return mNative; }
    AAX_Result GetModifiers(uint32_t* modifiers) override;
    AAX_Result SetViewSize(AAX_Point& size) override;

    const std::vector<AAX_Point>& Requests() const { return mRequests; }

private:
    ~CHostViewContainer() override = default;
    ACFRESULT AnswerQuery(const acfIID& iid, void** out) override;

    int32_t mType = AAX_eViewContainer_Type_NULL;
    void* mNative = nullptr;
    std::vector<AAX_Point> mRequests;
};

}  // namespace AAXHost
