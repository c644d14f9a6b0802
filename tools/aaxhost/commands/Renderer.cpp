#include "Renderer.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>

#include "AAXWrapper_Status.h"
#include "AAX_IDescription.h"
#include "CrashReport.h"
#include "EditorSession.h"
#include "HostInstance.h"
#include "HostString.h"
#include "MidiSchedule.h"
#include "PluginSession.h"
#include "ProgressBar.h"
#include "RenderPlot.h"
#include "ResultText.h"
#include "StateFile.h"
#include "TestSignal.h"

namespace AAXHost {

namespace {

int64_t SampleAt(double seconds, double sampleRate)
{
    return static_cast<int64_t>(std::llround(seconds * sampleRate));
}

std::string CheckRenderConfig(const SRenderConfig& config)
{
    if (!(config.sampleRate >= 1000.0 && config.sampleRate <= 1536000.0))
        return "--rate must be from 1000 to 1536000 Hz";
    if (config.blockSize < 1 || config.blockSize > 65536)
        return "block size must be from 1 to 65536";
    if (!(config.seconds >= 0.0) || std::isnan(config.tail) || config.seconds > 86400.0 || config.tail > 86400.0 ||
        !(config.tempo >= 0.0 && config.tempo <= 10000.0))
        return "--seconds and --tail must be from 0 to 86400, --tempo from 0 to 10000";
    if (std::isnan(config.editorAt) || config.editorAt > 86400.0)
        return "--editor-at must be from 0 to 86400";
    if (config.instances < 1 || config.instances > 256)
        return "instances must be from 1 to 256";
    return std::string();
}

// One render from set-up to tear-down; each step reports failure in mError.
class CRenderJob {
public:
    CRenderJob(CPluginSession& session, const SRenderConfig& config, SRenderReport& report, std::string& error)
        : mSession(session), mConfig(config), mReport(report), mError(error)
    {
    }

    bool Run()
    {
        return FindProcessProcedure() && ReadMidi() && CreateInstances() && ChooseLength() && RestoreState() &&
               ApplyBypass() &&
               TellOffline() && OpenAllOutputs() && RenderBlocks() && WritePlot() && SaveState() && DestroyInstances();
    }

private:
    struct SPendingSet {
        SParameterSet set;
        int64_t sample;
        bool done;
    };

    bool FindProcessProcedure();
    bool ReadMidi();
    bool CreateInstances();
    bool ChooseLength();
    bool RestoreState();
    bool ApplyBypass();
    bool TellOffline();
    bool OpenAllOutputs();
    bool RenderBlocks();
    bool RenderBlock(const SBlock& block);
    bool ApplyDueSets(const SBlock& block);
    bool SetOnEveryInstance(const std::string& id, double value);
    bool OpenEditorWhenDue(const SBlock& block);
    void PrepareInstances(const SBlock& block);
    bool CollectOutputs(const SBlock& block);
    bool IdleEditor();
    void WakeDataModelsWhenDue(const SBlock& block);
    bool WritePlot();
    bool SaveState();
    bool DestroyInstances();

    CPluginSession& mSession;
    const SRenderConfig& mConfig;
    SRenderReport& mReport;
    std::string& mError;

    const SEffectInfo* mEffect = nullptr;
    const SComponentInfo* mComponent = nullptr;
    AAX_CProcessProc mProcess = nullptr;
    CMidiSchedule mSchedule;
    STransportState mTransport;
    SInstanceConfig mInstanceConfig;
    std::vector<std::unique_ptr<CHostInstance>> mInstances;
    std::vector<void*> mContexts;
    std::vector<SPendingSet> mPendingSets;
    std::vector<std::vector<SOutputFile>> mOutputs;
    std::vector<AAX_CMidiPacket> mPackets;
    std::vector<const float*> mChannelPointers;
    CEditorSession mEditor;
    std::unique_ptr<CRenderPlot> mPlot;  // instance 0, with --plot
    std::vector<const float*> mPlotPointers;
    int64_t mEditorSample = -1;
    int64_t mNextWakeup = 0;
};

bool CRenderJob::FindProcessProcedure()
{
    mEffect = mSession.FindEffect(mConfig.effectID, mError);
    if (!mEffect)
        return false;
    mComponent = FindProcessingComponent(*mEffect);
    if (!mComponent) {
        mError = "the effect registered no native process procedure";
        return false;
    }
    mProcess = reinterpret_cast<AAX_CProcessProc>(mComponent->processProcs.front().proc);
    return true;
}

// The MIDI file decides the tempo (unless --tempo does) and, without
// --seconds, the length.
bool CRenderJob::ReadMidi()
{
    double fileTempo = 120.0;
    SetHostPhase("reading the MIDI file");
    if (!mConfig.midiPath.empty() &&
        !mSchedule.LoadSmf(mConfig.midiPath, mConfig.sampleRate, mConfig.tempo, mError, &fileTempo))
        return false;
    mTransport.sampleRate = mConfig.sampleRate;
    mTransport.tempo = mConfig.tempo > 0.0 ? mConfig.tempo : fileTempo;
    mTransport.meterNumerator = mConfig.meterNumerator;
    mTransport.meterDenominator = mConfig.meterDenominator;
    mTransport.playing = !mConfig.stopped;
    return true;
}

// --seconds, or the MIDI length plus the tail: --tail, else what the first
// instance's plug-in declares, never less than the default (an instrument's
// notes ring on past their last event whatever its tail says) and capped.
bool CRenderJob::ChooseLength()
{
    if (mConfig.seconds > 0.0) {
        mReport.totalSamples = SampleAt(mConfig.seconds, mConfig.sampleRate);
        return true;
    }
    double tail = SRenderConfig::kDefaultTailSeconds;
    mReport.tailSource = "default";
    if (mConfig.tail >= 0.0) {
        tail = mConfig.tail;
        mReport.tailSource = "option";
    } else {
        const std::string& declared = mInstances.front()->WrapperStatus().tail;
        const double seconds = declared == "infinite" ? HUGE_VAL
                               : declared.empty()     ? 0.0
                                                      : std::strtod(declared.c_str(), nullptr) / mConfig.sampleRate;
        if (seconds > tail) {
            tail = std::min(seconds, SRenderConfig::kMostTailSeconds);
            mReport.tailSource = seconds > tail ? "plugin, capped" : "plugin";
            if (seconds > tail)
                std::fprintf(stderr, "note: the plug-in's tail (%s%s) is capped at %g s; --tail sets another length\n",
                             declared.c_str(), declared == "infinite" ? "" : " samples", tail);
        }
    }
    mReport.tailSeconds = tail;
    mReport.totalSamples = mSchedule.LastSample() + SampleAt(tail, mConfig.sampleRate);
    return true;
}

bool CRenderJob::CreateInstances()
{
    mInstanceConfig.sampleRate = mConfig.sampleRate;
    mInstanceConfig.maxBlock = mConfig.blockSize;
    mInstanceConfig.outputChannels = OutputChannelCount(*mComponent);
    SetPhase("instance creation");
    for (int i = 0; i < mConfig.instances; ++i) {
        mInstances.push_back(std::make_unique<CHostInstance>(*mEffect, *mComponent, mInstanceConfig, mTransport));
        if (!mInstances.back()->Create(mError)) {
            // The first instance's failure is the bundle's; later ones are news.
            if (i > 0)
                mError = "instance " + std::to_string(i) + ": " + mError;
            return false;
        }
        mContexts.push_back(mInstances.back()->Context());
    }
    return true;
}

bool CRenderJob::RestoreState()
{
    if (mConfig.loadState.empty())
        return true;
    SetHostPhase("reading the state file");
    std::vector<SStateChunk> chunks;
    if (!ReadStateFile(mConfig.loadState, chunks, mError))
        return false;
    SetPhase("state restore (SetChunk)");
    for (auto& inst : mInstances)
        if (!LoadEffectState(*inst->Effect(), chunks, mError))
            return false;
    return true;
}

bool CRenderJob::ApplyBypass()
{
    if (!mConfig.bypass)
        return true;
    CHostString bypassID;
    if (mInstances.front()->Effect()->GetMasterBypassParameter(&bypassID) != AAX_SUCCESS || bypassID.Text().empty()) {
        mError = "the effect names no master bypass parameter";
        return false;
    }
    for (auto& inst : mInstances) {
        const AAX_Result r = inst->SetParameter(bypassID.Text(), 1.0);
        if (r != AAX_SUCCESS) {
            mError = "setting " + bypassID.Text() + " failed with " + ResultText(r);
            return false;
        }
    }
    return true;
}

// A host that bounces tells its plug-ins before the first buffer.
bool CRenderJob::TellOffline()
{
    if (!mConfig.offline)
        return true;
    SetPhase("the offline notification (NotificationReceived)");
    const int32_t offline = 1;
    for (auto& inst : mInstances) {
        const AAX_Result r =
            inst->Effect()->NotificationReceived(kWrapperNotificationOffline, &offline, sizeof(offline));
        if (r != AAX_SUCCESS) {
            mError = "the offline notification failed with " + ResultText(r);
            return false;
        }
    }
    return true;
}

bool CRenderJob::OpenAllOutputs()
{
    mOutputs.resize(mInstances.size());
    mReport.instances.resize(mInstances.size());
    for (size_t i = 0; i < mInstances.size(); ++i) {
        if (!OpenOutputs(*mComponent, mConfig, static_cast<int>(i), mOutputs[i], mReport.instances[i], mError))
            return false;
        mReport.instances[i].channels.resize(static_cast<size_t>(mInstanceConfig.outputChannels));
    }
    if (!mConfig.plotPath.empty())
        mPlot = std::make_unique<CRenderPlot>(mInstanceConfig.outputChannels, mReport.totalSamples, mConfig.sampleRate);
    return true;
}

bool CRenderJob::RenderBlocks()
{
    for (const auto& s : mConfig.sets)
        mPendingSets.push_back({s, SampleAt(s.atSeconds, mConfig.sampleRate), false});
    mEditorSample = mConfig.editorAt < 0.0 ? -1 : SampleAt(mConfig.editorAt, mConfig.sampleRate);
    mPackets.reserve(256);
    CProgressBar progress(mConfig.progress && !mConfig.json && isatty(STDOUT_FILENO));

    SetPhase("rendering");
    const auto started = std::chrono::steady_clock::now();
    // As a host compensating the delay: the effect runs that much longer and
    // its first samples are not written.
    if (mConfig.compensate)
        mReport.latencyCompensated = std::max<int32_t>(0, mInstances.front()->Controller()->Latency());
    const int64_t rendered = mReport.totalSamples + mReport.latencyCompensated;
    for (const SBlock& block : PlanBlocks(rendered, mConfig.blockSize)) {
        if (!RenderBlock(block))
            return false;
        progress.Show(block.start + block.frames, rendered);
    }
    progress.Finish();
    if (mEditor.IsOpen()) {
        SetPhase("closing the view");
        mEditor.Close();
    }
    mReport.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    for (auto& files : mOutputs)
        for (auto& f : files)
            f.writer->Close();
    return true;
}

// What a host does around one call of the process procedure: automation
// due in the buffer, MIDI and transport in, audio out, then its idle work.
bool CRenderJob::RenderBlock(const SBlock& block)
{
    mTransport.samplePosition = block.start;
    if (!ApplyDueSets(block) || !OpenEditorWhenDue(block))
        return false;
    PrepareInstances(block);
    mProcess(mContexts.data(), mContexts.data() + mContexts.size());
    ++mReport.processCalls;
    for (auto& inst : mInstances)
        inst->FinishBlock();
    if (!CollectOutputs(block))
        return false;
    if (!IdleEditor())
        return false;
    WakeDataModelsWhenDue(block);
    return true;
}

bool CRenderJob::ApplyDueSets(const SBlock& block)
{
    for (auto& p : mPendingSets) {
        if (p.done || p.sample >= block.start + block.frames)
            continue;
        p.done = true;
        if (!SetOnEveryInstance(p.set.id, p.set.value))
            return false;
    }
    return true;
}

bool CRenderJob::SetOnEveryInstance(const std::string& id, double value)
{
    for (auto& inst : mInstances) {
        const AAX_Result r = inst->SetParameter(id, value);
        if (r != AAX_SUCCESS) {
            mError = "setting parameter \"" + id + "\" failed with " + ResultText(r);
            return false;
        }
    }
    return true;
}

bool CRenderJob::OpenEditorWhenDue(const SBlock& block)
{
    if (mEditorSample < 0 || mEditor.IsOpen() || mEditorSample >= block.start + block.frames)
        return true;
    SetPhase("opening the view");
    if (!mEditor.Open(*mInstances.front(), mError, mConfig.editorWindow))
        return false;
    if (mConfig.editorClick)
        mEditor.ClickWhenUp(mConfig.editorClickX, mConfig.editorClickY);
    SetPhase("rendering");
    return true;
}

void CRenderJob::PrepareInstances(const SBlock& block)
{
    mSchedule.PacketsForBlock(block.start, block.frames, mPackets);
    for (auto& inst : mInstances) {
        inst->PrepareBlock(block.start, block.frames, mPackets);
        if (!mConfig.testInput)
            continue;
        for (int ch = 0; ch < inst->InputChannels(); ++ch) {
            float* in = inst->Input(ch);
            for (int s = 0; s < block.frames; ++s)
                in[s] = TestInputSample(ch, block.start + s, mConfig.sampleRate);
        }
    }
}

bool CRenderJob::CollectOutputs(const SBlock& block)
{
    // With --compensate the samples before the latency are not kept.
    const int64_t trim = mReport.latencyCompensated;
    const int32_t skip = static_cast<int32_t>(std::clamp<int64_t>(trim - block.start, 0, block.frames));
    const int32_t frames = block.frames - skip;
    if (frames == 0)
        return true;
    const int64_t start = block.start + skip - trim;
    if (mPlot) {
        const CHostInstance& first = *mInstances.front();
        mPlotPointers.clear();
        for (int ch = 0; ch < first.OutputChannels(); ++ch)
            mPlotPointers.push_back(first.Output(ch) + skip);
        mPlot->Add(mPlotPointers.data(), start, frames);
    }
    for (size_t i = 0; i < mInstances.size(); ++i) {
        const CHostInstance& inst = *mInstances[i];
        for (int ch = 0; ch < inst.OutputChannels(); ++ch)
            mReport.instances[i].channels[static_cast<size_t>(ch)].Add(inst.Output(ch) + skip, frames);
        for (auto& f : mOutputs[i]) {
            mChannelPointers.clear();
            for (int c = 0; c < f.channels; ++c)
                mChannelPointers.push_back(inst.Output(f.firstChannel + c) + skip);
            if (!f.writer->Write(mChannelPointers.data(), frames)) {
                mError = "writing audio failed";
                return false;
            }
        }
    }
    return true;
}

bool CRenderJob::IdleEditor()
{
    if (!mEditor.IsOpen())
        return true;
    SetPhase("the view's timer");
    const bool ok = mEditor.Idle(mError);
    SetPhase("rendering");
    return ok;
}

// A host wakes each data model about every 50 ms on its main thread.
void CRenderJob::WakeDataModelsWhenDue(const SBlock& block)
{
    if (block.start + block.frames < mNextWakeup)
        return;
    SetPhase("the data model's timer (TimerWakeup)");
    for (auto& inst : mInstances)
        inst->Effect()->TimerWakeup();
    mNextWakeup += std::max<int64_t>(1, SampleAt(0.05, mConfig.sampleRate));
    SetPhase("rendering");
}

// The main output, then every stem of instance 0 that sounds.
bool CRenderJob::WritePlot()
{
    if (!mPlot)
        return true;
    SetHostPhase("drawing the plot");
    const std::vector<SChannelStats>& stats = mReport.instances.front().channels;
    std::vector<SPlotRow> rows;
    rows.push_back({"Main output", 0, 2, 0, 0});
    int channel = 2;
    for (const auto& stem : mComponent->stems) {
        const int count = std::max(1, AAX_STEM_FORMAT_CHANNEL_COUNT(stem.format));
        bool sounds = false;
        for (int c = channel; c < channel + count && c < static_cast<int>(stats.size()); ++c)
            sounds = sounds || stats[static_cast<size_t>(c)].peak > 0.0;
        if (sounds)
            rows.push_back({stem.name, channel, count, 0, 0});
        channel += count;
    }
    char title[160];
    std::snprintf(title, sizeof title, "%s  -  %.3f s at %.0f Hz, blocks of %d",
                  (mEffect->names.empty() ? mEffect->effectID : mEffect->names.front()).c_str(),
                  mConfig.sampleRate > 0 ? static_cast<double>(mReport.totalSamples) / mConfig.sampleRate : 0.0,
                  mConfig.sampleRate, mConfig.blockSize);
    int height = 0;
    if (!mPlot->Write(mConfig.plotPath, title, rows, height, mError))
        return false;
    mReport.plot.file = mConfig.plotPath;
    mReport.plot.width = CRenderPlot::kWidth;
    mReport.plot.height = height;
    for (const SPlotRow& row : rows)
        mReport.plot.rows.push_back(row.name);
    return true;
}

bool CRenderJob::SaveState()
{
    if (mConfig.saveState.empty())
        return true;
    SetPhase("state save (GetChunk)");
    std::vector<SStateChunk> chunks;
    return SaveEffectState(*mInstances.front()->Effect(), chunks, mError) &&
           WriteStateFile(mConfig.saveState, chunks, mError);
}

bool CRenderJob::DestroyInstances()
{
    SetPhase("instance destruction");
    for (size_t i = 0; i < mInstances.size(); ++i) {
        SInstanceReport& r = mReport.instances[i];
        r.midiIn = mInstances[i]->MidiInCount();
        if (const CHostMidiNode* out = mInstances[i]->MidiOut())
            r.midiOut = out->Posted();
        r.automation = mInstances[i]->Controller()->Automation();
        r.latency = mInstances[i]->Controller()->Latency();
        r.latencies = mInstances[i]->Controller()->Latencies();
        mInstances[i]->Destroy();
    }
    return true;
}

}  // namespace

bool Render(CPluginSession& session, const SRenderConfig& config, SRenderReport& report, std::string& error)
{
    report = SRenderReport();
    report.sampleRate = config.sampleRate;
    report.blockSize = config.blockSize;
    error = CheckRenderConfig(config);
    if (!error.empty())
        return false;
    return CRenderJob(session, config, report, error).Run();
}

}  // namespace AAXHost
