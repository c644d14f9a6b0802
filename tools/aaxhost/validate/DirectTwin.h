// Whose fault a failure is: when a check fails on a wrapper bundle, its
// direct twin runs on the wrapped plug-in hosted directly (own process, same
// seed, same level plan). Failing the same way there, the fault is the
// plug-in's; otherwise it is the wrapper's.
#pragma once

#include <nlohmann/json.hpp>
#include <string>

#include "CheckRegistry.h"
#include "ValidateConfig.h"

namespace AAXHost {

// What the bundle's status block says about the plug-in it wraps.
struct STwinTarget {
    bool wrapper = false;  // the bundle has a status block
    bool loaded = false;
    std::string mode;
    std::string plugin;
};

// Read in a child process: a bundle that crashes on instantiation is not
// allowed to end the run.
STwinTarget ProbeTwinTarget(const SValidateConfig& config);

struct SVerdict {
    std::string fault;  // "plug-in", "wrapper", or empty for a bundle that is no wrapper
    bool twinRan = false;
    bool sameWay = false;
    SCheckResult twin;
    double twinSeconds = 0.0;

    // "; hosted directly it fails the same way: ..." and the like; empty when no twin ran.
    std::string Sentence() const;
    nlohmann::json ToJson() const;
};

// For a failed check: runs its twin when it has one and judges.
SVerdict JudgeFailure(const SValidateConfig& config, const SCheckDefinition& check, uint64_t seed,
                      const SCheckResult& failure, const STwinTarget& target);

}  // namespace AAXHost
