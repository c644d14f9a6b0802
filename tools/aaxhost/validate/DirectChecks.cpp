#include "DirectChecks.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <thread>

#include "AllocationCount.h"
#include "AudioLoop.h"
#include "CheckProcess.h"
#include "DirectRig.h"
#include "ValidationContext.h"

namespace AAXHost {

namespace {

using Clock = std::chrono::steady_clock;
constexpr int kStateBlock = 256;
constexpr int kMaxBlock = 4096;

std::string Percent(double value)
{
    char text[32];
    std::snprintf(text, sizeof text, "%.6g", value);
    return text;
}

bool Created(CDirectRig& rig, const std::string& phase, SCheckResult& result)
{
    SetCheckPhase(phase);
    std::string error;
    if (rig.Create(error))
        return true;
    result.Fail("the plug-in cannot be hosted directly: " + error);
    return false;
}

void JudgeSamples(const SSampleCounts& counts, const std::string& where, SCheckResult& result)
{
    if (counts.nan > 0 || counts.infinite > 0)
        result.Fail(std::to_string(counts.nan) + " NaN and " + std::to_string(counts.infinite) +
                    " infinite output samples " + where);
}

void Randomise(CValidationContext& context, AAXDirect::IDirectPlugin& plugin)
{
    for (int i = 0; i < plugin.ParameterCount(); ++i)
        plugin.SetParameter(i, context.RandomUnit());
}

std::vector<double> ParameterValues(AAXDirect::IDirectPlugin& plugin)
{
    std::vector<double> values(static_cast<size_t>(std::max(plugin.ParameterCount(), 0)));
    for (size_t i = 0; i < values.size(); ++i)
        values[i] = plugin.GetParameter(static_cast<int>(i));
    return values;
}

bool SaveState(CDirectRig& rig, std::vector<char>& state, const std::string& what, SCheckResult& result)
{
    std::string error;
    if (rig.Plugin().SaveState(state, error))
        return true;
    result.Fail(what + ": " + error);
    return false;
}

// A fresh instance takes the damaged copy however it likes, then must still
// play and save.
void RestoreDamaged(const AAXDirect::SDirectSetup& setup, const std::vector<char>& damaged, const std::string& what,
                    SCheckResult& result)
{
    CDirectRig rig(setup, 48000.0, kStateBlock);
    if (!Created(rig, "state (hosted directly): instance creation for a " + what + " state", result))
        return;
    SetCheckPhase("state (hosted directly): restoring a " + what + " state");
    std::string error;
    rig.Plugin().LoadState(damaged, error);  // refusing is right
    SetCheckPhase("state (hosted directly): processing after a " + what + " state");
    for (int i = 0; i < 4; ++i)
        rig.Process(kStateBlock);
    SetCheckPhase("state (hosted directly): saving after a " + what + " state");
    std::vector<char> again;
    SaveState(rig, again, "after a " + what + " state the plug-in cannot save its state", result);
}

}  // namespace

DirectCheckFunction FindDirectCheck(const std::string& name)
{
    if (name == "parameters")
        return DirectParameters;
    if (name == "state")
        return DirectState;
    if (name == "processing")
        return DirectProcessing;
    if (name == "threads")
        return DirectThreads;
    if (name == "realtime")
        return DirectRealtime;
    if (name == "instances")
        return DirectInstances;
    if (name == "load-unload")
        return DirectLoadUnload;
    return nullptr;
}

void DirectParameters(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result)
{
    CDirectRig rig(setup, 48000.0, 32);
    if (!Created(rig, "parameters (hosted directly): instance creation", result))
        return;
    AAXDirect::IDirectPlugin& plugin = rig.Plugin();
    const int count = plugin.ParameterCount();
    // The plug-in may snap a value to its steps, but the value it answers
    // must lie in 0..1 and hold when set again.
    auto setAndCheck = [&](int index, double value) {
        plugin.SetParameter(index, value);
        const double read = plugin.GetParameter(index);
        if (!(read >= 0.0 && read <= 1.0)) {
            result.Fail("parameter " + std::to_string(index) + " (" + plugin.ParameterName(index) + ") set to " +
                        Percent(value) + " reads back " + Percent(read) + ", outside 0..1");
            return;
        }
        plugin.SetParameter(index, read);
        const double again = plugin.GetParameter(index);
        if (std::fabs(again - read) > 1e-5)
            result.Fail("parameter " + std::to_string(index) + " (" + plugin.ParameterName(index) + ") set to " +
                        Percent(read) + ", the value it answered, reads back " + Percent(again));
    };
    SetCheckPhase("parameters (hosted directly): each parameter at 0, 1/4, 1/2, 3/4 and 1");
    for (int i = 0; i < count && result.passed; ++i) {
        for (double v : {0.0, 0.25, 0.5, 0.75, 1.0})
            setAndCheck(i, v);
        plugin.ParameterText(i);
        CheckBeat();
    }
    SetCheckPhase("parameters (hosted directly): random values in random order");
    for (int round = 0; round < context.Plan().randomParameterSets && result.passed && count > 0; ++round)
        for (int n = 0; n < count && result.passed; ++n)
            setAndCheck(context.RandomInt(0, count - 1), context.RandomUnit());
    SetCheckPhase("parameters (hosted directly): automation during processing");
    const int buffers = static_cast<int>(context.Plan().automationSeconds * 48000.0 / 32);
    for (int b = 0; b < buffers && result.passed; ++b) {
        if (count > 0)
            plugin.SetParameter(b % count, context.RandomUnit());
        rig.Process(32);
    }
    JudgeSamples(rig.Counts(), "during automation", result);
    result.details = {{"parameters", count}, {"automation_buffers", buffers}};
    result.Note(std::to_string(count) + " parameters hold their values; " + std::to_string(buffers) +
                " automated buffers");
    SetCheckPhase("parameters (hosted directly): instance destruction");
}

void DirectState(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result)
{
    std::vector<char> saved, restored;
    // What a host shows and saves beside the plug-in's own state: the
    // parameter values, which a restore must give back too.
    std::vector<double> shown, shownAfterRestore;
    std::string firstName;
    {
        CDirectRig source(setup, 48000.0, kStateBlock);
        if (!Created(source, "state (hosted directly): instance creation", result))
            return;
        SetCheckPhase("state (hosted directly): randomising every parameter");
        Randomise(context, source.Plugin());
        SetCheckPhase("state (hosted directly): processing");
        for (int i = 0; i < 4; ++i)
            source.Process(kStateBlock);
        SetCheckPhase("state (hosted directly): saving");
        if (!SaveState(source, saved, "saving the state failed", result))
            return;
        shown = ParameterValues(source.Plugin());
        SetCheckPhase("state (hosted directly): instance destruction");
    }
    {
        CDirectRig fresh(setup, 48000.0, kStateBlock);
        if (!Created(fresh, "state (hosted directly): fresh instance creation", result))
            return;
        SetCheckPhase("state (hosted directly): restoring into a fresh instance");
        std::string error;
        if (!fresh.Plugin().LoadState(saved, error)) {
            result.Fail("restoring the saved state failed: " + error);
            return;
        }
        SetCheckPhase("state (hosted directly): processing after the restore");
        for (int i = 0; i < 4; ++i)
            fresh.Process(kStateBlock);
        SetCheckPhase("state (hosted directly): saving after the restore");
        if (!SaveState(fresh, restored, "saving the restored state failed", result))
            return;
        shownAfterRestore = ParameterValues(fresh.Plugin());
        for (size_t i = 0; i < shown.size() && i < shownAfterRestore.size() && firstName.empty(); ++i)
            if (shown[i] != shownAfterRestore[i])
                firstName = fresh.Plugin().ParameterName(static_cast<int>(i));
        SetCheckPhase("state (hosted directly): instance destruction");
    }
    result.details = {{"bytes", saved.size()}, {"bytes_after_restore", restored.size()}};
    if (saved.size() != restored.size()) {
        result.Fail("the restored state does not save byte for byte as it was saved: it was " +
                    std::to_string(saved.size()) + " bytes, is " + std::to_string(restored.size()));
    } else {
        const auto diverge = std::mismatch(saved.begin(), saved.end(), restored.begin());
        if (diverge.first != saved.end())
            result.Fail("the restored state does not save byte for byte as it was saved: it differs first at byte " +
                        std::to_string(diverge.first - saved.begin()) + " of " + std::to_string(saved.size()));
    }
    for (size_t i = 0; i < shown.size() && i < shownAfterRestore.size() && result.passed; ++i)
        if (shown[i] != shownAfterRestore[i])
            result.Fail("the restored state does not give back the parameter values it was saved with: parameter " +
                        std::to_string(i) + " (" + firstName + ") read " + Percent(shown[i]) +
                        " before the save and " + Percent(shownAfterRestore[i]) + " after the restore");
    // Damaged copies, as the check makes them of the wrapper's chunk.
    int damagedCount = 0;
    const size_t size = saved.size();
    for (size_t keep : {size_t{0}, size_t{1}, size / 2, size > 0 ? size - 1 : 0}) {
        if (!result.passed || (keep >= size && size > 0))
            continue;
        RestoreDamaged(setup, std::vector<char>(saved.begin(), saved.begin() + static_cast<std::ptrdiff_t>(keep)),
                       "truncated", result);
        ++damagedCount;
    }
    for (int i = 0; i < context.Plan().corruptStates && result.passed && size > 0; ++i) {
        std::vector<char> damaged = saved;
        const int flips = context.RandomInt(1, 8);
        for (int f = 0; f < flips; ++f) {
            const size_t at = static_cast<size_t>(context.RandomInt(0, static_cast<int>(size) - 1));
            damaged[at] = static_cast<char>(damaged[at] ^ (1 << context.RandomInt(0, 7)));
        }
        RestoreDamaged(setup, damaged, "bit-flipped", result);
        ++damagedCount;
    }
    result.details["damaged_restores"] = damagedCount;
    result.Note(std::to_string(size) + " bytes restored byte for byte; " + std::to_string(damagedCount) +
                " damaged copies taken safely");
}

void DirectProcessing(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result)
{
    const SLevelPlan& plan = context.Plan();
    SSampleCounts total;
    for (double rate : plan.rates) {
        char where[120];
        std::snprintf(where, sizeof where, "at %.0f Hz", rate);
        CDirectRig rig(setup, rate, kMaxBlock);
        if (!Created(rig, std::string(where) + " (hosted directly): instance creation", result))
            return;
        for (int block : plan.buffers) {
            const std::string at = std::string(where) + ", buffers of " + std::to_string(block);
            SetCheckPhase("processing (hosted directly) " + at);
            rig.ResetCounts();
            const int64_t wanted = std::max<int64_t>(4 * block, static_cast<int64_t>(plan.secondsPerSetting * rate));
            for (int64_t done = 0; done < wanted; done += block)
                rig.Process(block);
            JudgeSamples(rig.Counts(), at, result);
            total.Add(rig.Counts());
            if (!result.passed)
                return;
        }
        const std::string at = std::string(where) + ", random buffer sizes and empty buffers";
        SetCheckPhase("processing (hosted directly) " + at);
        rig.ResetCounts();
        for (int i = 0; i < plan.randomBuffers; ++i) {
            rig.Process(context.RandomInt(1, kMaxBlock));
            if (i % 4 == 0)
                rig.Process(0);
        }
        JudgeSamples(rig.Counts(), at, result);
        total.Add(rig.Counts());
        if (!result.passed)
            return;
        SetCheckPhase(std::string(where) + " (hosted directly): instance destruction");
    }
    result.details = {{"samples", total.samples}, {"nan", total.nan}, {"infinite", total.infinite},
                      {"denormal", total.denormal}};
    result.Note(std::to_string(plan.rates.size()) + " rates x " + std::to_string(plan.buffers.size()) +
                " buffer sizes, " + std::to_string(total.samples) + " samples");
}

void DirectThreads(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result)
{
    CDirectRig rig(setup, 48000.0, kStateBlock);
    if (!Created(rig, "threads (hosted directly): instance creation", result))
        return;
    const double seconds = context.Plan().threadSeconds;
    CAudioLoop audio(context, [&rig] { rig.Process(kStateBlock); });
    int parameterSets = 0, restores = 0;
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    std::string error;
    while (Clock::now() < end && result.passed) {
        SetCheckPhase("threads (hosted directly): parameters set during processing");
        Randomise(context, rig.Plugin());
        parameterSets += rig.Plugin().ParameterCount();
        CheckBeat();
        SetCheckPhase("threads (hosted directly): state saved and restored during processing");
        std::vector<char> state;
        if (!rig.Plugin().SaveState(state, error) || !rig.Plugin().LoadState(state, error))
            result.Fail("saving and restoring during processing: " + error);
        ++restores;
        CheckBeat();
    }
    SetCheckPhase("threads (hosted directly): waiting for the audio thread");
    audio.Stop();
    JudgeSamples(rig.Counts(), "while the main thread worked", result);
    result.details = {{"audio_buffers", audio.Buffers()}, {"parameter_sets", parameterSets},
                      {"states_restored", restores}};
    result.Note(std::to_string(audio.Buffers()) + " audio buffers against " + std::to_string(parameterSets) +
                " parameter sets, " + std::to_string(restores) + " state restores");
    SetCheckPhase("threads (hosted directly): instance destruction");
}

void DirectRealtime(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result)
{
    if (!AllocationCountingAvailable()) {
        result.Fail("this aaxhost cannot count allocations (its allocation hooks are missing)");
        return;
    }
    CDirectRig rig(setup, 48000.0, 512);
    if (!Created(rig, "realtime (hosted directly): instance creation", result))
        return;
    SetCheckPhase("realtime (hosted directly): warm-up");
    for (int i = 0; i < 8; ++i)
        rig.Process(512);
    SetCheckPhase("realtime (hosted directly): processing with allocations counted");
    ResetAllocationCount();
    rig.SetCountAllocations(true);
    const int buffers = context.Plan().realtimeBuffers;
    const int count = rig.Plugin().ParameterCount();
    for (int i = 0; i < buffers; ++i) {
        if (count > 0 && i % 4 == 0)
            rig.Plugin().SetParameter((i / 4) % count, context.RandomUnit());
        rig.Process(i % 3 == 0 ? 64 : 512);
    }
    rig.SetCountAllocations(false);
    uint64_t pluginCount = 0;
    std::string text;
    for (const SAllocationSource& s : AllocationSources()) {
        if (s.library == "aaxhost")
            continue;  // the direct host's own answers to the plug-in's calls
        pluginCount += s.allocations + s.frees;
        text += (text.empty() ? "" : ", ") + s.library.substr(s.library.find_last_of('/') + 1) + " " +
                std::to_string(s.allocations) + " allocations, " + std::to_string(s.frees) + " frees";
    }
    const double allowance = RealtimeAllowancePerBuffer(context.Config().level);
    const double perBuffer = static_cast<double>(pluginCount) / buffers;
    result.details = {{"buffers", buffers}, {"plugin", pluginCount}, {"plugin_allowance_per_buffer", allowance}};
    char figures[120];
    std::snprintf(figures, sizeof figures, " (%.3f a buffer; level %d allows %.3f)", perBuffer,
                  context.Config().level, allowance);
    if (perBuffer > allowance)
        result.Fail("allocations on the audio thread in " + std::to_string(buffers) + " buffers: " + text + figures);
    result.Note(pluginCount == 0 ? "no allocation on the audio thread in " + std::to_string(buffers) + " buffers"
                                 : "within the allowance: " + text + figures);
    SetCheckPhase("realtime (hosted directly): instance destruction");
}

void DirectInstances(CValidationContext& context, const AAXDirect::SDirectSetup& setup, SCheckResult& result)
{
    std::vector<std::unique_ptr<CDirectRig>> live;
    const int rounds = context.Plan().instanceCycles;
    for (int round = 0; round < rounds && result.passed; ++round) {
        live.push_back(std::make_unique<CDirectRig>(setup, 48000.0, 512));
        if (!Created(*live.back(), "instances (hosted directly): instance creation", result))
            return;
        SetCheckPhase("instances (hosted directly): processing every live instance");
        for (auto& rig : live)
            for (int i = 0; i < 4; ++i)
                rig->Process(512);
        if (live.size() == 3) {
            SetCheckPhase("instances (hosted directly): instance destruction");
            live.erase(live.begin());
        }
    }
    live.clear();
    const int atOnce = context.Plan().instancesAtOnce;
    for (int i = 0; i < atOnce && result.passed; ++i) {
        live.push_back(std::make_unique<CDirectRig>(setup, 48000.0, 512));
        Created(*live.back(), "instances (hosted directly): instance creation, many at once", result);
    }
    SetCheckPhase("instances (hosted directly): processing many at once");
    for (auto& rig : live)
        if (result.passed)
            rig->Process(512);
    SetCheckPhase("instances (hosted directly): instance destruction");
    live.clear();
    result.Note(std::to_string(rounds) + " interleaved rounds, " + std::to_string(atOnce) + " at once");
}

}  // namespace AAXHost
