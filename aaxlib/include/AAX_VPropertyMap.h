// Plug-in side proxy of a host property map.
#pragma once

#include "AAX_IDescription.h"

class AAX_VPropertyMap : public AAX_IPropertyMap {
public:
    explicit AAX_VPropertyMap(IACFUnknown* pUnknown);
    ~AAX_VPropertyMap() override;
    AAX_VPropertyMap(const AAX_VPropertyMap&) = delete;
    AAX_VPropertyMap& operator=(const AAX_VPropertyMap&) = delete;

    bool IsValid() const { return mIPropertyMap != nullptr; }
    AAX_CBoolean GetProperty(AAX_EProperty inProperty, AAX_CPropertyValue* outValue) const override;
    AAX_Result AddProperty(AAX_EProperty inProperty, AAX_CPropertyValue inValue) override;
    AAX_Result RemoveProperty(AAX_EProperty inProperty) override;
    IACFUnknown* GetIUnknown() const override { return mIPropertyMap; }

private:
    AAX_IACFPropertyMap* mIPropertyMap = nullptr;
};
