// Plug-in side proxy of a host effect description.
#pragma once

#include <memory>
#include <vector>

#include "AAX_IDescription.h"
#include "AAX_VComponentDescriptor.h"
#include "AAX_VPropertyMap.h"

class AAX_VEffectDescriptor : public AAX_IEffectDescriptor {
public:
    explicit AAX_VEffectDescriptor(IACFUnknown* pUnknown);
    ~AAX_VEffectDescriptor() override;
    AAX_VEffectDescriptor(const AAX_VEffectDescriptor&) = delete;
    AAX_VEffectDescriptor& operator=(const AAX_VEffectDescriptor&) = delete;

    bool IsValid() const { return mIEffectDescriptor != nullptr; }
    AAX_IComponentDescriptor* NewComponentDescriptor() override;
    AAX_Result AddComponent(AAX_IComponentDescriptor* inComponentDescriptor) override;
    AAX_Result AddName(const char* inPlugInName) override;
    AAX_Result AddCategory(uint32_t inCategory) override;
    AAX_Result AddCategoryBypassParameter(uint32_t inCategory, AAX_CParamID inParamID) override;
    AAX_Result AddProcPtr(void* inProcPtr, AAX_CProcPtrID inProcID) override;
    AAX_IPropertyMap* NewPropertyMap() override;
    AAX_Result SetProperties(AAX_IPropertyMap* inProperties) override;
    IACFUnknown* GetIUnknown() const override { return mIEffectDescriptor; }

private:
    AAX_IACFEffectDescriptor* mIEffectDescriptor = nullptr;
    std::vector<std::unique_ptr<AAX_VComponentDescriptor>> mComponentDescriptors;
    std::vector<std::unique_ptr<AAX_VPropertyMap>> mPropertyMaps;
};
