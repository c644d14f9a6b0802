#include "AAX_Exports.h"

#include "AAX_CHostServices.h"
#include "AAX_VCollection.h"
#include "CACFUnknown.h"

ACFRESULT AAXRegisterPlugin(IACFUnknown* pUnkHost, IACFPluginDefinition** ppPluginDefinition)
{
    // The collection lives only for this call, whatever happens.
    AAX_VCollection collection(pUnkHost);
    const AAX_Result result = GetEffectDescriptions(&collection);
    if (result != AAX_SUCCESS) return result;
    if (ppPluginDefinition == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    *ppPluginDefinition = nullptr;
    IACFUnknown* unknown = collection.GetIUnknown();
    if (unknown == nullptr ||
        unknown->QueryInterface(IID_IACFPluginDefinition, reinterpret_cast<void**>(ppPluginDefinition)) != ACF_OK) {
        *ppPluginDefinition = nullptr;
        return AAX_ERROR_NULL_OBJECT;
    }
    return AAX_SUCCESS;
}

ACFRESULT AAXRegisterComponent(IACFUnknown* /*pUnkHost*/, acfUInt32 /*index*/, IACFUnknown** ppComponentDefinition)
{
    if (ppComponentDefinition != nullptr) *ppComponentDefinition = nullptr;
    return AAX_SUCCESS;
}

ACFRESULT AAXGetClassFactory(IACFUnknown* /*pUnkHost*/, const acfCLSID& /*clsid*/, const acfIID& /*iid*/, void** ppOut)
{
    if (ppOut != nullptr) *ppOut = nullptr;
    return AAX_ERROR_UNIMPLEMENTED;
}

ACFRESULT AAXCanUnloadNow(IACFUnknown* /*pUnkHost*/) { return CACFUnknown::GetActiveObjectCount(); }

ACFRESULT AAXStartup(IACFUnknown* pUnkHost)
{
    AAX_CHostServices::Set(pUnkHost);
    return AAX_SUCCESS;
}

ACFRESULT AAXShutdown(IACFUnknown* /*pUnkHost*/)
{
    AAX_CHostServices::Set(nullptr);
    return AAX_SUCCESS;
}

ACFRESULT AAXGetSDKVersion(uint64_t* oSDKVersion)
{
    if (oSDKVersion == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    *oSDKVersion = kAAX_SDK_VERSION_WORD;
    return AAX_SUCCESS;
}
