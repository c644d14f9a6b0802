// One factory per back end, so that the front end needs only the contract.
#pragma once

#include <string>

#include "fakehost/HostMode.h"

class AAX_CEffectParameters;
class IFakeHost;

IFakeHost* CreateFakeHostVST2(AAX_CEffectParameters& owner, std::string& path, EHostMode mode);
IFakeHost* CreateFakeHostVST3(AAX_CEffectParameters& owner, std::string& path, EHostMode mode);
