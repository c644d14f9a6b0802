// A minimal ACF library that fails in one chosen way, so that the host's
// handling of a misbehaving plug-in can be checked.
//   BROKEN_MODE 1: ACFRegisterPlugin returns AAX_ERROR_NULL_OBJECT
//   BROKEN_MODE 2: registration succeeds but describes no effect
//   BROKEN_MODE 3: ACFStartup fails
//   BROKEN_MODE 4: describes one bare effect, then ACFCanUnloadNow keeps
//                  reporting live objects
#include "AAX_IDescription.h"

#define BROKEN_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

void DescribeBareEffect(IACFUnknown* host)
{
    AAX_IACFCollection* collection = nullptr;
    if (host->QueryInterface(IID_IAAXCollectionV1, reinterpret_cast<void**>(&collection)) != ACF_OK)
        return;
    IACFUnknown* effect = collection->NewDescriptor();
    AAX_IACFEffectDescriptor* descriptor = nullptr;
    if (effect && effect->QueryInterface(IID_IAAXEffectDescriptorV1, reinterpret_cast<void**>(&descriptor)) == ACF_OK) {
        descriptor->AddName("Leaky");
        collection->AddEffect("com.morvane.test.leaky", effect);
        descriptor->Release();
    }
    if (effect)
        effect->Release();
    collection->Release();
}

ACFRESULT HandBackDefinition(IACFUnknown* host, IACFPluginDefinition** out)
{
    if (BROKEN_MODE == 4)
        DescribeBareEffect(host);
    *out = nullptr;
    return host->QueryInterface(IID_IACFPluginDefinition, reinterpret_cast<void**>(out));
}

}  // namespace

BROKEN_EXPORT ACFRESULT ACFRegisterPlugin(IACFUnknown* host, IACFPluginDefinition** out)
{
    if (BROKEN_MODE == 1) {
        *out = nullptr;
        return AAX_ERROR_NULL_OBJECT;
    }
    return HandBackDefinition(host, out);
}

BROKEN_EXPORT ACFRESULT ACFRegisterComponent(IACFUnknown*, acfUInt32, IACFUnknown** out)
{
    *out = nullptr;
    return ACF_OK;
}

BROKEN_EXPORT ACFRESULT ACFGetClassFactory(IACFUnknown*, const acfCLSID&, const acfIID&, void** out)
{
    *out = nullptr;
    return AAX_ERROR_UNIMPLEMENTED;
}

BROKEN_EXPORT ACFRESULT ACFCanUnloadNow(IACFUnknown*) { return BROKEN_MODE == 4 ? 2 : 0; }
BROKEN_EXPORT ACFRESULT ACFStartup(IACFUnknown*) { return BROKEN_MODE == 3 ? ACF_E_UNEXPECTED : ACF_OK; }
BROKEN_EXPORT ACFRESULT ACFShutdown(IACFUnknown*) { return ACF_OK; }

BROKEN_EXPORT ACFRESULT ACFGetSDKVersion(uint64_t* version)
{
    *version = kAAX_SDK_VERSION_WORD;
    return ACF_OK;
}
