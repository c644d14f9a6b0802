// The library's side of the seven ACF entry points. The bundle's exported
// C functions forward to these.
#pragma once

#include <cstdint>

#include "AAX.h"
#include "AAX_IDescription.h"
#include "ACFBase.h"

// Defined by the plug-in: describes its effects into the host's collection.
AAX_Result GetEffectDescriptions(AAX_ICollection* collection);

ACFRESULT AAXRegisterPlugin(IACFUnknown* pUnkHost, IACFPluginDefinition** ppPluginDefinition);
ACFRESULT AAXRegisterComponent(IACFUnknown* pUnkHost, acfUInt32 index, IACFUnknown** ppComponentDefinition);
ACFRESULT AAXGetClassFactory(IACFUnknown* pUnkHost, const acfCLSID& clsid, const acfIID& iid, void** ppOut);
ACFRESULT AAXCanUnloadNow(IACFUnknown* pUnkHost);
ACFRESULT AAXStartup(IACFUnknown* pUnkHost);
ACFRESULT AAXShutdown(IACFUnknown* pUnkHost);
ACFRESULT AAXGetSDKVersion(uint64_t* oSDKVersion);
