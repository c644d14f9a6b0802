// aaxhost validate: every check in its own process, a PASS or FAIL line for
// each with the reason, a summary, and the aaxhost-validate-1 JSON form.
#pragma once

#include "ValidateConfig.h"

namespace AAXHost {

// Returns the exit code: 0 only when every check that ran passed.
int RunValidate(SValidateConfig config);

}  // namespace AAXHost
