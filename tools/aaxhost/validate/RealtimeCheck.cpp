// realtime: heap allocations and frees on the audio thread, inside the
// process call, counted by the library that made them. The wrapper's own
// must be none; the plug-in's fail above its level's allowance (a host's
// audio thread may not wait for the allocator's lock). What aaxhost itself
// does when the plug-in calls into it is shown, never held against either.
#include <cstdio>
#include <cstring>
#include <filesystem>

#include "AllocationCount.h"
#include "BundleLoader.h"
#include "CheckProcess.h"
#include "CheckRegistry.h"
#include "ParameterList.h"
#include "ProcessingRig.h"
#include "ValidationContext.h"

namespace AAXHost {

namespace {

// First buffers set up lazily in many plug-ins; hosts forgive them.
constexpr int kWarmUpBuffers = 8;

bool SameFile(const std::string& a, const std::string& b)
{
    std::error_code error;
    return a == b || std::filesystem::equivalent(a, b, error);
}

}  // namespace

void CheckRealtime(CValidationContext& context, SCheckResult& result)
{
    std::string error;
    if (!AllocationCountingAvailable()) {
        result.Fail("this aaxhost cannot count allocations (its allocation hooks are missing)");
        return;
    }
    std::string library;
    if (!context.Open(error) || !FindBundleLibrary(context.Config().bundle, library, error)) {
        result.Fail(error);
        return;
    }
    SetCheckPhase("realtime: instance creation");
    CProcessingRig rig(context.Effect(), context.Component(), 48000.0, 512);
    if (!rig.Create(error)) {
        result.Fail(error);
        return;
    }
    std::vector<SParameterInfo> params;
    ReadParameters(*rig.Instance().Effect(), params, error);
    SetCheckPhase("realtime: warm-up");
    for (int i = 0; i < kWarmUpBuffers; ++i)
        rig.Process(512);

    SetCheckPhase("realtime: processing with allocations counted");
    ResetAllocationCount();
    rig.SetCountAllocations(true);
    const int buffers = context.Plan().realtimeBuffers;
    size_t next = 0;
    for (int i = 0; i < buffers; ++i) {
        // Automation between buffers, as a host plays a written mix.
        if (!params.empty() && i % 4 == 0) {
            const SParameterInfo& p = params[next++ % params.size()];
            if (!p.isMasterBypass)
                rig.Instance().SetParameter(p.id, context.RandomUnit());
        }
        const int32_t frames = i % 3 == 0 ? 64 : 512;
        rig.Process(frames);
    }
    rig.SetCountAllocations(false);
    uint64_t wrapperCount = 0, pluginCount = 0, hostCount = 0;
    std::string pluginText;
    nlohmann::json sources = nlohmann::json::array();
    for (const SAllocationSource& s : AllocationSources()) {
        const bool isHost = s.library == "aaxhost";
        const bool isWrapper = !isHost && SameFile(s.library, library);
        const uint64_t events = s.allocations + s.frees;
        (isHost ? hostCount : isWrapper ? wrapperCount : pluginCount) += events;
        if (!isHost && !isWrapper)
            pluginText += (pluginText.empty() ? "" : ", ") + std::filesystem::path(s.library).filename().string() + " " +
                          std::to_string(s.allocations) +
                          " allocations, " + std::to_string(s.frees) + " frees";
        sources.push_back({{"library", s.library}, {"role", isHost ? "host" : isWrapper ? "wrapper" : "plug-in"},
                           {"allocations", s.allocations}, {"frees", s.frees}, {"first_stack", s.firstStack}});
    }
    const double allowance = RealtimeAllowancePerBuffer(context.Config().level);
    result.details = {{"buffers", buffers},      {"wrapper", wrapperCount}, {"plugin", pluginCount},
                      {"host", hostCount},       {"plugin_allowance_per_buffer", allowance},
                      {"sources", sources}};
    SetCheckPhase("realtime: instance destruction");
    rig.Instance().Destroy();
    if (!context.Close(error))
        result.Fail(error);
    if (wrapperCount > 0)
        result.Fail("the wrapper allocated or freed " + std::to_string(wrapperCount) + " times on the audio thread in " +
                    std::to_string(buffers) + " buffers");
    const double perBuffer = static_cast<double>(pluginCount) / buffers;
    char text[160];
    if (context.Config().level < 5)
        std::snprintf(text, sizeof text, " (%.3f a buffer; level %d sets no limit)", perBuffer, context.Config().level);
    else
        std::snprintf(text, sizeof text, " (%.3f a buffer; level %d allows %.3f)", perBuffer, context.Config().level,
                      allowance);
    if (perBuffer > allowance)
        result.Fail("allocations on the audio thread in " + std::to_string(buffers) + " buffers: " + pluginText + text);
    result.Note(pluginCount == 0 ? "no allocation on the audio thread in " + std::to_string(buffers) + " buffers"
                                 : "within the allowance: " + pluginText + text);
}

}  // namespace AAXHost
