// Plug-in side proxy of the host's collection of effect descriptions.
#pragma once

#include <memory>
#include <vector>

#include "AAX_IDescription.h"
#include "AAX_VEffectDescriptor.h"
#include "AAX_VPropertyMap.h"

class AAX_VCollection : public AAX_ICollection {
public:
    explicit AAX_VCollection(IACFUnknown* pUnknown);
    ~AAX_VCollection() override;
    AAX_VCollection(const AAX_VCollection&) = delete;
    AAX_VCollection& operator=(const AAX_VCollection&) = delete;

    bool IsValid() const { return mIACFCollection != nullptr; }
    AAX_IEffectDescriptor* NewDescriptor() override;
    AAX_Result AddEffect(const char* inEffectID, AAX_IEffectDescriptor* inEffectDescriptor) override;
    AAX_Result SetManufacturerName(const char* inPackageName) override;
    AAX_Result AddPackageName(const char* inPackageName) override;
    AAX_Result SetPackageVersion(uint32_t inVersion) override;
    AAX_IPropertyMap* NewPropertyMap() override;
    AAX_Result SetProperties(AAX_IPropertyMap* inProperties) override;
    IACFUnknown* GetIUnknown() const override { return mIACFCollection; }

private:
    AAX_IACFCollection* mIACFCollection = nullptr;
    std::vector<std::unique_ptr<AAX_VEffectDescriptor>> mEffectDescriptors;
    std::vector<std::unique_ptr<AAX_VPropertyMap>> mPropertyMaps;
};
