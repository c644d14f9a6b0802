// One factory per back end, so that the front end needs only the contract.
#pragma once

#include <memory>
#include <string>

#include "fakehost/HostMode.h"

class AAX_CEffectParameters;
class IFakeHost;

std::unique_ptr<IFakeHost> CreateFakeHostVST2(AAX_CEffectParameters& owner, const std::string& path, EHostMode mode);
std::unique_ptr<IFakeHost> CreateFakeHostVST3(AAX_CEffectParameters& owner, const std::string& path, EHostMode mode);
