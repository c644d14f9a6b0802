// The view family: the native window area the host gives a plug-in's editor.
#pragma once

#include "ACFBase.h"
#include "AAX.h"

inline constexpr acfIID IID_IAAXViewContainerV1 = {0x4D72766E, 0x0204, 0x4141, {0x58, 0x56, 0x69, 0x65, 0x77, 0x43, 0x56, 0x31}};

class AAX_IACFViewContainer : public IACFUnknown {
public:
    virtual int32_t GetType() = 0;  // AAX_EViewContainer_Type
    virtual void* GetPtr() = 0;     // the native parent view
    virtual AAX_Result GetModifiers(uint32_t* outModifiers) = 0;
    virtual AAX_Result SetViewSize(AAX_Point& inSize) = 0;

protected:
    ~AAX_IACFViewContainer() = default;
};

class AAX_IViewContainer {
public:
    virtual ~AAX_IViewContainer() = default;
    virtual int32_t GetType() = 0;
    virtual void* GetPtr() = 0;
    virtual AAX_Result GetModifiers(uint32_t* outModifiers) = 0;
    virtual AAX_Result SetViewSize(AAX_Point& inSize) = 0;
};
