#include "CheckOutcome.h"

namespace AAXHost {

std::string EncodeCheckResult(const SCheckResult& result)
{
    return nlohmann::json{{"passed", result.passed}, {"reason", result.reason}, {"details", result.details}}.dump();
}

SCheckResult DecodeCheckOutcome(const SCheckProcessOutcome& outcome)
{
    SCheckResult result;
    if (outcome.delivered) {
        const nlohmann::json j = nlohmann::json::parse(outcome.result, nullptr, false);
        if (j.is_discarded()) {
            result.Fail("the check's process handed back no readable result");
        } else {
            result.passed = j.value("passed", false);
            result.reason = j.value("reason", std::string());
            result.details = j.value("details", nlohmann::json::object());
        }
    }
    if (!outcome.failure.empty())
        result.Fail(outcome.failure);
    return result;
}

}  // namespace AAXHost
