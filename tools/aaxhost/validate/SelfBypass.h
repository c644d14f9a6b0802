// The master bypass of a wrapper whose plug-in bypasses itself: a bypassed
// buffer is what the plug-in makes of it (its latency, its tails, silence
// for many instruments), so it is judged against the plug-in hosted
// directly with its own bypass on, not against the input.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "CheckRegistry.h"
#include "ProcessingRig.h"

namespace AAXHost {

// Plays `frames` through the bypassed rig and the directly hosted plug-in
// side by side; `worst` is the largest difference of the main pair from
// buffer `skip` on. False (with why) when the direct host cannot be made.
bool CompareWithOwnBypass(CProcessingRig& rig, const std::vector<int32_t>& frames, size_t skip, float& worst,
                          std::string& error);

// The same as a verdict: the first buffers are left out (hosts allow a short
// cross-fade into bypass); a difference beyond single-precision noise fails.
void JudgeOwnBypass(CProcessingRig& rig, const std::vector<int32_t>& frames, SCheckResult& result);

}  // namespace AAXHost
