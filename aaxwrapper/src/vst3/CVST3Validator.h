// Runs an external VST 3 validator program on a bundle, for diagnostics.
#pragma once

#include <string>

namespace Morvane {
namespace vst3 {

// The program named by the environment variable VST3_VALIDATOR, else a
// "validator" found on PATH; empty when there is none.
std::string FindValidatorProgram();

// Runs the validator on the bundle with its report on standard output (the
// log's sink). Returns its exit status, or -1 when it could not be run.
int RunValidator(const std::string& bundlePath);

}  // namespace vst3
}  // namespace Morvane
