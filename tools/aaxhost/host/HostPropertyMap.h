// The host's property map: what the plug-in fills before handing it back with
// a process procedure or as effect/collection properties.
#pragma once

#include "AAX_IDescription.h"
#include "PluginDescription.h"
#include "RefCount.h"

namespace AAXHost {

// Lets the host recognise its own objects when the plug-in hands them back.
inline constexpr acfIID IID_CHostPropertyMap = {0x68737441, 0x0001, 0x4858, {0x50, 0x72, 0x6F, 0x70, 0x4D, 0x61, 0x70, 0x00}};

class CHostPropertyMap final : public CHostUnknown<AAX_IACFPropertyMap> {
public:
    AAX_CBoolean GetProperty(AAX_EProperty id, AAX_CPropertyValue* value) const override;
    AAX_Result AddProperty(AAX_EProperty id, AAX_CPropertyValue value) override;
    AAX_Result RemoveProperty(AAX_EProperty id) override;

    const PropertyList& Properties() const { return mProperties; }

private:
    ~CHostPropertyMap() override = default;
    ACFRESULT AnswerQuery(const acfIID& iid, void** out) override;

    PropertyList mProperties;
};

// Reads the properties out of a map the plug-in handed over: ours directly,
// a foreign one by asking for every identifier the AAX format defines.
PropertyList ReadPropertyMap(IACFUnknown* map);

}  // namespace AAXHost
