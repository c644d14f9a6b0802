// threads: while an audio thread plays, the host's main thread sweeps
// parameters, opens and closes the view and saves and restores chunks, as a
// user does during playback. Faults show as crashes, NaN output, hangs, or
// (in a ThreadSanitizer build) data race reports.
#include <atomic>
#include <cstdlib>
#include <chrono>
#include <thread>

#include "AAX_IEffectParameters.h"
#include "AudioLoop.h"
#include "CheckProcess.h"
#include "CheckRegistry.h"
#include "EditorSession.h"
#include "ParameterList.h"
#include "ProcessingRig.h"
#include "StateFile.h"
#include "ValidationContext.h"

namespace AAXHost {

namespace {

constexpr int32_t kBlock = 256;

using Clock = std::chrono::steady_clock;

bool HasDisplay()
{
    const char* display = std::getenv("DISPLAY");
    return display && *display;
}

struct SMainThreadWork {
    int parameterSets = 0;
    int viewsOpened = 0;
    int statesRestored = 0;
};

void SweepParameters(CValidationContext& context, CProcessingRig& rig, const std::vector<SParameterInfo>& params,
                     SMainThreadWork& work)
{
    for (const SParameterInfo& p : params) {
        if (p.isMasterBypass)
            continue;
        rig.Instance().SetParameter(p.id, context.RandomUnit());
        ++work.parameterSets;
    }
}

// Only into a real window: without a display some plug-ins' editors end
// the process (GTK's), which no host that shows views would see.
bool OpenAndCloseView(CProcessingRig& rig, SMainThreadWork& work, std::string& error)
{
    if (!rig.Instance().GuiFactory() || !HasDisplay())
        return true;
    CEditorSession view;
    if (!view.Open(rig.Instance(), error, true))
        return false;
    for (int i = 0; i < 3; ++i)
        if (!view.Idle(error))
            return false;
    view.Close();
    ++work.viewsOpened;
    return true;
}

bool SaveAndRestore(CProcessingRig& rig, SMainThreadWork& work, std::string& error)
{
    std::vector<SStateChunk> chunks;
    if (!SaveEffectState(*rig.Instance().Effect(), chunks, error))
        return false;
    if (!LoadEffectState(*rig.Instance().Effect(), chunks, error))
        return false;
    ++work.statesRestored;
    return true;
}

}  // namespace

void CheckThreads(CValidationContext& context, SCheckResult& result)
{
    std::string error;
    if (!context.Open(error)) {
        result.Fail(error);
        return;
    }
    SetCheckPhase("threads: instance creation");
    CProcessingRig rig(context.Effect(), context.Component(), 48000.0, kBlock);
    if (!rig.Create(error)) {
        result.Fail(error);
        return;
    }
    std::vector<SParameterInfo> params;
    if (!ReadParameters(*rig.Instance().Effect(), params, error)) {
        result.Fail(error);
        return;
    }
    const double seconds = context.Plan().threadSeconds;
    CAudioLoop audio(context, [&rig] { rig.Process(kBlock); });

    SMainThreadWork work;
    const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(seconds));
    while (Clock::now() < end && result.passed) {
        SetCheckPhase("threads: parameters set on the main thread during processing");
        SweepParameters(context, rig, params, work);
        SetCheckPhase("threads: the view opened and closed during processing");
        if (!OpenAndCloseView(rig, work, error))
            result.Fail("opening the view during processing: " + error);
        SetCheckPhase("threads: state saved and restored during processing");
        if (!SaveAndRestore(rig, work, error))
            result.Fail("saving and restoring during processing: " + error);
        SetCheckPhase("threads: the data model's timer during processing");
        rig.Instance().Effect()->TimerWakeup();
    }
    SetCheckPhase("threads: waiting for the audio thread");
    audio.Stop();
    const SSampleCounts& counts = rig.Counts();
    if (counts.nan > 0 || counts.infinite > 0)
        result.Fail(std::to_string(counts.nan) + " NaN and " + std::to_string(counts.infinite) +
                    " infinite output samples while the main thread worked");
    SetCheckPhase("threads: instance destruction");
    rig.Instance().Destroy();
    if (!context.Close(error))
        result.Fail(error);
    result.details = {{"audio_buffers", audio.Buffers()},
                      {"parameter_sets", work.parameterSets},
                      {"views_opened", work.viewsOpened},
                      {"states_restored", work.statesRestored},
                      {"nan", counts.nan},
                      {"infinite", counts.infinite}};
    result.details["display"] = HasDisplay();
    result.Note(std::to_string(audio.Buffers()) + " audio buffers against " + std::to_string(work.parameterSets) +
                " parameter sets, " + std::to_string(work.viewsOpened) +
                (HasDisplay() ? " views, " : " views (no DISPLAY), ") +
                std::to_string(work.statesRestored) + " state restores");
}

}  // namespace AAXHost
