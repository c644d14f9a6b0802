// instances: hosts create and destroy instances while others play (a track
// added during playback), and keep many alive at once.
#include <deque>
#include <memory>

#include "CheckProcess.h"
#include "CheckRegistry.h"
#include "PluginSession.h"
#include "ProcessingRig.h"
#include "ValidationContext.h"

namespace AAXHost {

namespace {

constexpr int32_t kBlock = 256;

std::unique_ptr<CProcessingRig> NewRig(CValidationContext& context, std::string& error)
{
    auto rig = std::make_unique<CProcessingRig>(context.Effect(), context.Component(), 48000.0, kBlock);
    if (!rig->Create(error))
        return nullptr;
    return rig;
}

std::vector<CProcessingRig*> Pointers(const std::deque<std::unique_ptr<CProcessingRig>>& rigs)
{
    std::vector<CProcessingRig*> out;
    for (const auto& r : rigs)
        out.push_back(r.get());
    return out;
}

}  // namespace

void CheckInstances(CValidationContext& context, SCheckResult& result)
{
    std::string error;
    if (!context.Open(error)) {
        result.Fail(error);
        return;
    }
    const SLevelPlan& plan = context.Plan();
    int created = 0;
    {
        // Interleaved: each round adds one instance, plays every live one a
        // little, and takes the oldest away once three are alive.
        std::deque<std::unique_ptr<CProcessingRig>> live;
        for (int round = 0; round < plan.instanceCycles && result.passed; ++round) {
            SetCheckPhase("instance creation (interleaved, round " + std::to_string(round + 1) + ")");
            auto rig = NewRig(context, error);
            if (!rig) {
                result.Fail("instance " + std::to_string(created + 1) + ": " + error);
                break;
            }
            ++created;
            live.push_back(std::move(rig));
            SetCheckPhase("processing (interleaved instances)");
            for (int b = 0; b < 4; ++b)
                CProcessingRig::ProcessTogether(Pointers(live), kBlock);
            if (live.size() >= 3) {
                SetCheckPhase("instance destruction (interleaved)");
                live.pop_front();
            }
        }
        SetCheckPhase("instance destruction (interleaved)");
    }
    if (result.passed) {
        // Many at once, processed in one call as a host batches them.
        std::deque<std::unique_ptr<CProcessingRig>> many;
        SetCheckPhase("instance creation (" + std::to_string(plan.instancesAtOnce) + " at once)");
        for (int i = 0; i < plan.instancesAtOnce && result.passed; ++i) {
            auto rig = NewRig(context, error);
            if (!rig) {
                result.Fail("instance " + std::to_string(i + 1) + " of " + std::to_string(plan.instancesAtOnce) +
                            " alive at once: " + error);
                break;
            }
            ++created;
            many.push_back(std::move(rig));
        }
        SetCheckPhase("processing " + std::to_string(many.size()) + " instances in one call");
        for (int b = 0; b < 8 && result.passed; ++b)
            CProcessingRig::ProcessTogether(Pointers(many), kBlock);
        SetCheckPhase("instance destruction (all at once)");
        // Destroyed newest first, the reverse of most hosts' order.
        while (!many.empty())
            many.pop_back();
    }
    result.details = {{"created", created}, {"alive_at_once", plan.instancesAtOnce}};
    if (!context.Close(error))
        result.Fail(error);
    result.Note(std::to_string(created) + " instances, " + std::to_string(plan.instancesAtOnce) + " alive at once");
}

}  // namespace AAXHost
