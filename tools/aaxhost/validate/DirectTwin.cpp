#include "DirectTwin.h"

#include <exception>

#include "CheckOutcome.h"
#include "CheckProcess.h"
#include "DirectChecks.h"
#include "DirectRig.h"
#include "PluginSession.h"
#include "ValidationContext.h"
#include "WrapperStatus.h"

namespace AAXHost {

namespace {

// A process that ended abnormally (crash, hang, exit, escaped exception,
// memory written past a buffer, which a host survives only by chance) is
// one way of failing; a check's own finding is the other. Which signal or
// which exception differs between hosts: the wrapper catches what the
// plug-in throws and may end on another signal.
bool EndedAbnormally(const std::string& reason)
{
    for (const char* start : {"crashed", "hung:", "the check's process ended", "an exception escaped", "memory damaged:"})
        if (reason.rfind(start, 0) == 0)
            return true;
    return false;
}

std::string RunTwinInChild(const SValidateConfig& config, DirectCheckFunction twin, uint64_t seed,
                           const AAXDirect::SDirectSetup& setup)
{
    SCheckResult result;
    try {
        CValidationContext context(config, seed);
        twin(context, setup, result);
    } catch (const CPluginOverrun& e) {
        result.Fail(std::string("memory damaged: ") + e.what());
    } catch (const std::exception& e) {
        result.Fail(std::string("an exception escaped: ") + e.what());
    }
    return EncodeCheckResult(result);
}

}  // namespace

STwinTarget ProbeTwinTarget(const SValidateConfig& config)
{
    const SCheckProcessOutcome outcome = RunCheckProcess(
        [&] {
            SetCheckPhase("reading the wrapper's status");
            CPluginSession session;
            std::string error;
            if (!session.Open(config.bundle, error))
                return std::string("{}");
            const SWrapperStatus status = ProbeWrapperStatus(session);
            session.Close(error);
            return nlohmann::json{{"present", status.present},
                                  {"loaded", status.loaded},
                                  {"mode", status.mode},
                                  {"plugin", status.plugin}}
                .dump();
        },
        config.timeout);
    STwinTarget target;
    const nlohmann::json j = nlohmann::json::parse(outcome.delivered ? outcome.result : "{}", nullptr, false);
    if (j.is_object()) {
        target.wrapper = j.value("present", false);
        target.loaded = j.value("loaded", false);
        target.mode = j.value("mode", std::string());
        target.plugin = j.value("plugin", std::string());
    }
    return target;
}

SVerdict JudgeFailure(const SValidateConfig& config, const SCheckDefinition& check, uint64_t seed,
                      const SCheckResult& failure, const STwinTarget& target)
{
    SVerdict verdict;
    if (!target.wrapper)
        return verdict;
    verdict.fault = "wrapper";
    const DirectCheckFunction twin = FindDirectCheck(check.name);
    if (twin == nullptr || !target.loaded || target.plugin.empty())
        return verdict;
    AAXDirect::SDirectSetup setup;
    setup.path = target.plugin;
    // The baseline is what the plug-in does in a mainstream host.
    setup.standard = true;
    const SCheckProcessOutcome outcome =
        RunCheckProcess([&] { return RunTwinInChild(config, twin, seed, setup); }, config.timeout);
    verdict.twinRan = true;
    verdict.twinSeconds = outcome.seconds;
    verdict.twin = DecodeCheckOutcome(outcome);
    verdict.sameWay = !verdict.twin.passed && EndedAbnormally(verdict.twin.reason) == EndedAbnormally(failure.reason);
    if (verdict.sameWay)
        verdict.fault = "plug-in";
    return verdict;
}

std::string SVerdict::Sentence() const
{
    if (!twinRan)
        return "";
    if (twin.passed)
        return "; hosted directly it passes";
    return (sameWay ? "; hosted directly it fails the same way: " : "; hosted directly it fails otherwise: ") +
           twin.reason;
}

nlohmann::json SVerdict::ToJson() const
{
    nlohmann::json direct = nullptr;
    if (twinRan)
        direct = {{"passed", twin.passed}, {"reason", twin.reason}, {"same_way", sameWay},
                  {"seconds", twinSeconds}, {"details", twin.details}};
    return {{"fault", fault.empty() ? nlohmann::json(nullptr) : nlohmann::json(fault)}, {"direct", direct}};
}

}  // namespace AAXHost
