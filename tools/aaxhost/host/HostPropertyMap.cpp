#include "HostPropertyMap.h"

namespace AAXHost {

ACFRESULT CHostPropertyMap::AnswerQuery(const acfIID& iid, void** out)
{
    if (iid == IID_IACFUnknown || iid == IID_IAAXPropertyMapV1 || iid == IID_CHostPropertyMap)
        return AnswerInterface<AAX_IACFPropertyMap>(this, out);
    return ACF_E_NOINTERFACE;
}

AAX_CBoolean CHostPropertyMap::GetProperty(AAX_EProperty id, AAX_CPropertyValue* value) const
{
    for (const auto& p : mProperties)
        if (p.first == id) {
            if (value)
                *value = p.second;
            return 1;
        }
    return 0;
}

AAX_Result CHostPropertyMap::AddProperty(AAX_EProperty id, AAX_CPropertyValue value)
{
    // A second value for the same property replaces the first, keeping its place.
    for (auto& p : mProperties)
        if (p.first == id) {
            p.second = value;
            return AAX_SUCCESS;
        }
    mProperties.emplace_back(id, value);
    return AAX_SUCCESS;
}

AAX_Result CHostPropertyMap::RemoveProperty(AAX_EProperty id)
{
    for (auto it = mProperties.begin(); it != mProperties.end(); ++it)
        if (it->first == id) {
            mProperties.erase(it);
            return AAX_SUCCESS;
        }
    return AAX_ERROR_PROPERTY_UNDEFINED;
}

PropertyList ReadPropertyMap(IACFUnknown* map)
{
    PropertyList result;
    if (!map)
        return result;
    void* own = nullptr;
    if (map->QueryInterface(IID_CHostPropertyMap, &own) == ACF_OK && own) {
        auto* ours = static_cast<CHostPropertyMap*>(static_cast<AAX_IACFPropertyMap*>(own));
        result = ours->Properties();
        ours->Release();
        return result;
    }
    void* foreign = nullptr;
    if (map->QueryInterface(IID_IAAXPropertyMapV1, &foreign) != ACF_OK || !foreign)
        return result;
    auto* props = static_cast<AAX_IACFPropertyMap*>(foreign);
    for (int32_t id = 1; id < 1024; ++id) {
        AAX_CPropertyValue value = 0;
        if (props->GetProperty(static_cast<AAX_EProperty>(id), &value))
            result.emplace_back(id, value);
    }
    props->Release();
    return result;
}

}  // namespace AAXHost
