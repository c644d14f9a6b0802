// The validator's named checks and what each hands back.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace AAXHost {

class CValidationContext;

struct SCheckResult {
    bool passed = true;
    std::string reason;  // the first failure, or a short account of a pass
    nlohmann::json details = nlohmann::json::object();

    // Keeps the first reason: later failures are often its consequences.
    void Fail(const std::string& why)
    {
        if (passed)
            reason = why;
        passed = false;
    }
    void Note(const std::string& what)
    {
        if (passed && reason.empty())
            reason = what;
    }
};

using CheckFunction = void (*)(CValidationContext& context, SCheckResult& result);

struct SCheckDefinition {
    const char* name;
    const char* summary;
    int firstLevel;  // runs from this level on
    CheckFunction run;
};

// In the order they run.
const std::vector<SCheckDefinition>& AllChecks();

void CheckDescription(CValidationContext& context, SCheckResult& result);
void CheckLoadUnload(CValidationContext& context, SCheckResult& result);
void CheckInstances(CValidationContext& context, SCheckResult& result);
void CheckParameters(CValidationContext& context, SCheckResult& result);
void CheckState(CValidationContext& context, SCheckResult& result);
void CheckProcessing(CValidationContext& context, SCheckResult& result);
void CheckThreads(CValidationContext& context, SCheckResult& result);
void CheckRealtime(CValidationContext& context, SCheckResult& result);

}  // namespace AAXHost
