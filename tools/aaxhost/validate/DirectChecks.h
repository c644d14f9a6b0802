// The direct twins of the checks: the same steps, with the same seed and
// level plan, done on the wrapped plug-in hosted directly in its own terms.
// What they find is what the plug-in does in a mainstream host.
#pragma once

#include "CheckRegistry.h"
#include "DirectPlugin.h"

namespace AAXHost {

using DirectCheckFunction = void (*)(CValidationContext& context, const AAXDirect::SDirectSetup& setup,
                                     SCheckResult& result);

// Null for a check that has no twin (description: the wrapper's by nature).
DirectCheckFunction FindDirectCheck(const std::string& name);

void DirectParameters(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result);
void DirectState(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result);
void DirectProcessing(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result);
void DirectThreads(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result);
void DirectRealtime(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result);
void DirectLoadUnload(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result);
void DirectInstances(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result);

}  // namespace AAXHost
