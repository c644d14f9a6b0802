// A check's result as its child process hands it to the parent, and back.
#pragma once

#include <string>

#include "CheckProcess.h"
#include "CheckRegistry.h"

namespace AAXHost {

// In the child: the result as text for the parent.
std::string EncodeCheckResult(const SCheckResult& result);
// In the parent: what the child handed back, failed by how the child ended.
SCheckResult DecodeCheckOutcome(const SCheckProcessOutcome& outcome);

}  // namespace AAXHost
