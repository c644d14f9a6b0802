// processing: every sample rate and buffer size a host may use, random and
// empty buffers too: no output may hold NaN or infinity (denormals are
// counted: they cost time, not correctness); with the bypass on, the input
// passes through (or plays as the plug-in plays its own bypass).
#include <algorithm>
#include <cstdio>

#include "CheckProcess.h"
#include "CheckRegistry.h"
#include "HostString.h"
#include "ProcessingRig.h"
#include "SelfBypass.h"
#include "ValidationContext.h"

namespace AAXHost {

namespace {

constexpr int32_t kMaxBlock = 4096;

std::string Where(double rate, const std::string& buffers)
{
    char text[120];
    std::snprintf(text, sizeof text, "at %.0f Hz, %s", rate, buffers.c_str());
    return text;
}

void Judge(const SSampleCounts& counts, const std::string& where, SCheckResult& result)
{
    if (counts.nan > 0 || counts.infinite > 0)
        result.Fail(std::to_string(counts.nan) + " NaN and " + std::to_string(counts.infinite) +
                    " infinite output samples " + where);
}

void PlayRate(CValidationContext& context, double rate, SSampleCounts& total, nlohmann::json& rows,
              SCheckResult& result)
{
    const SLevelPlan& plan = context.Plan();
    SetCheckPhase(Where(rate, "instance creation"));
    CProcessingRig rig(context.Effect(), context.Component(), rate, kMaxBlock);
    std::string error;
    if (!rig.Create(error)) {
        result.Fail(Where(rate, "instance creation: ") + error);
        return;
    }
    for (int32_t block : plan.buffers) {
        const std::string where = Where(rate, "buffers of " + std::to_string(block));
        SetCheckPhase("processing " + where);
        rig.ResetCounts();
        const int64_t wanted = std::max<int64_t>(4 * block, static_cast<int64_t>(plan.secondsPerSetting * rate));
        for (int64_t done = 0; done < wanted; done += block)
            rig.Process(block);
        Judge(rig.Counts(), where, result);
        total.Add(rig.Counts());
        rows.push_back({{"rate", rate}, {"buffer", block}, {"nan", rig.Counts().nan},
                        {"infinite", rig.Counts().infinite}, {"denormal", rig.Counts().denormal}});
    }
    const std::string where = Where(rate, "random buffer sizes and empty buffers");
    SetCheckPhase("processing " + where);
    rig.ResetCounts();
    for (int i = 0; i < plan.randomBuffers; ++i) {
        rig.Process(context.RandomInt(1, kMaxBlock));
        if (i % 4 == 0)
            rig.Process(0);
    }
    Judge(rig.Counts(), where, result);
    total.Add(rig.Counts());
    SetCheckPhase(Where(rate, "instance destruction"));
}

void PlayBypassed(CValidationContext& context, SCheckResult& result)
{
    SetCheckPhase("bypass: instance creation");
    CProcessingRig rig(context.Effect(), context.Component(), 48000.0, kMaxBlock);
    std::string error;
    if (!rig.Create(error)) {
        result.Fail("bypass: " + error);
        return;
    }
    CHostString bypass;
    if (rig.Instance().Effect()->GetMasterBypassParameter(&bypass) != AAX_SUCCESS || bypass.Text().empty())
        return;  // description fails for that
    rig.SetTestInput(true);
    SetCheckPhase("bypass: processing with varying buffers");
    rig.Instance().SetParameter(bypass.Text(), 1.0);
    if (rig.Instance().WrapperStatus().pluginBypasses) {
        std::vector<int32_t> frames(32);
        for (int32_t& f : frames)
            f = context.RandomInt(1, kMaxBlock);
        JudgeOwnBypass(rig, frames, result);
        return;
    }
    float worst = 0.0f;
    for (int i = 0; i < 32; ++i) {
        const int32_t frames = context.RandomInt(1, kMaxBlock);
        rig.Process(frames);
        if (i >= 4)
            worst = std::max(worst, rig.MainOutputDistanceFromInput(frames));
    }
    if (!(worst <= 1e-6f))
        result.Fail("with the master bypass on, the main output differs from the input by up to " +
                    std::to_string(worst));
}

}  // namespace

void CheckProcessing(CValidationContext& context, SCheckResult& result)
{
    std::string error;
    if (!context.Open(error)) {
        result.Fail(error);
        return;
    }
    SSampleCounts total;
    nlohmann::json rows = nlohmann::json::array();
    for (double rate : context.Plan().rates) {
        PlayRate(context, rate, total, rows, result);
        if (!result.passed)
            break;
    }
    if (result.passed)
        PlayBypassed(context, result);
    if (!context.Close(error))
        result.Fail(error);
    result.details = {{"samples", total.samples}, {"nan", total.nan}, {"infinite", total.infinite},
                      {"denormal", total.denormal}, {"settings", rows}};
    char text[200];
    std::snprintf(text, sizeof text, "%zu rates x %zu buffer sizes, %llu samples, %llu denormal",
                  context.Plan().rates.size(), context.Plan().buffers.size(),
                  static_cast<unsigned long long>(total.samples), static_cast<unsigned long long>(total.denormal));
    result.Note(text);
}

}  // namespace AAXHost
