// The bundle's only exported symbols: the ACF plug-in entry points. The
// guarded ones keep any exception from crossing into the host.
#include "AAX_Exports.h"
#include "ACFBase.h"
#include "AAXWrapper_RandomState.h"

#define AAXW_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

template <typename Call>
ACFRESULT Guarded(Call call)
{
    try {
        return call();
    } catch (...) {
        return ACF_E_UNEXPECTED;
    }
}

}  // namespace

AAXW_EXPORT ACFRESULT ACFRegisterPlugin(IACFUnknown* pUnkHost, IACFPluginDefinition** ppPluginDefinition)
{
    AAXWrapper_GiveBackRandomState();
    return Guarded([&] { return AAXRegisterPlugin(pUnkHost, ppPluginDefinition); });
}

AAXW_EXPORT ACFRESULT ACFRegisterComponent(IACFUnknown* pUnkHost, acfUInt32 index,
                                           IACFUnknown** ppComponentDefinition)
{
    AAXWrapper_GiveBackRandomState();
    return AAXRegisterComponent(pUnkHost, index, ppComponentDefinition);
}

AAXW_EXPORT ACFRESULT ACFGetClassFactory(IACFUnknown* pUnkHost, const acfCLSID& clsid, const acfIID& iid,
                                         void** ppOut)
{
    AAXWrapper_GiveBackRandomState();
    return AAXGetClassFactory(pUnkHost, clsid, iid, ppOut);
}

AAXW_EXPORT ACFRESULT ACFCanUnloadNow(IACFUnknown* pUnkHost)
{
    AAXWrapper_GiveBackRandomState();
    return Guarded([&] { return AAXCanUnloadNow(pUnkHost); });
}

AAXW_EXPORT ACFRESULT ACFStartup(IACFUnknown* pUnkHost)
{
    AAXWrapper_GiveBackRandomState();
    return Guarded([&] { return AAXStartup(pUnkHost); });
}

AAXW_EXPORT ACFRESULT ACFShutdown(IACFUnknown* pUnkHost)
{
    AAXWrapper_GiveBackRandomState();
    return Guarded([&] { return AAXShutdown(pUnkHost); });
}

AAXW_EXPORT ACFRESULT ACFGetSDKVersion(uint64_t* oSDKVersion)
{
    AAXWrapper_GiveBackRandomState();
    return AAXGetSDKVersion(oSDKVersion);
}
