#include "Renderer.h"

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <cstdio>
#include <filesystem>
#include <memory>

#include "AAX_IDescription.h"
#include "CrashReport.h"
#include "EditorSession.h"
#include "HostInstance.h"
#include "HostString.h"
#include "MidiSchedule.h"
#include "PluginSession.h"
#include "StateFile.h"
#include "TestSignal.h"
#include "WavWriter.h"
#include "ResultText.h"

namespace AAXHost {

namespace fs = std::filesystem;

namespace {

struct SOutputFile {
    std::unique_ptr<CWavWriter> writer;
    int firstChannel = 0;
    int channels = 0;
};

std::string SafeFileName(std::string name)
{
    for (char& c : name)
        if (c == '/' || c == '\\' || c == '\0')
            c = '_';
    return name.empty() ? std::string("stem") : name;
}

class CProgressBar {
public:
    explicit CProgressBar(bool enabled) : mEnabled(enabled) {}
    void Show(int64_t done, int64_t total)
    {
        if (!mEnabled || total <= 0)
            return;
        const int percent = static_cast<int>(done * 100 / total);
        if (percent == mShown)
            return;
        mShown = percent;
        const int width = 40, filled = percent * width / 100;
        std::printf("\r[%s%s] %3d%%", std::string(static_cast<size_t>(filled), '#').c_str(),
                    std::string(static_cast<size_t>(width - filled), '.').c_str(), percent);
        std::fflush(stdout);
    }
    void Finish()
    {
        if (mEnabled && mShown >= 0)
            std::printf("\n");
    }

private:
    bool mEnabled;
    int mShown = -1;
};

int OutputChannelCount(const SComponentInfo& c)
{
    int n = 2;
    for (const auto& s : c.stems)
        n += AAX_STEM_FORMAT_CHANNEL_COUNT(s.format);
    return std::max(n, 34);
}

bool OpenOutputs(const SComponentInfo& component, const SRenderConfig& config, int instance,
                 std::vector<SOutputFile>& files, SInstanceReport& report, std::string& error)
{
    const int rate = static_cast<int>(std::lround(config.sampleRate));
    SOutputFile main;
    main.writer = std::make_unique<CWavWriter>();
    main.channels = 2;
    const std::string mainPath = InstanceFileName(config.outPath, instance);
    if (!main.writer->Open(mainPath, 2, rate, error))
        return false;
    report.files.push_back(mainPath);
    files.push_back(std::move(main));
    if (config.stemsDir.empty())
        return true;
    std::error_code ec;
    fs::create_directories(config.stemsDir, ec);
    if (!fs::is_directory(config.stemsDir, ec)) {
        error = "cannot create the stems folder " + config.stemsDir;
        return false;
    }
    int channel = 2;
    for (const auto& stem : component.stems) {
        SOutputFile f;
        f.firstChannel = channel;
        f.channels = std::max(1, AAX_STEM_FORMAT_CHANNEL_COUNT(stem.format));
        channel += f.channels;
        f.writer = std::make_unique<CWavWriter>();
        const std::string path =
            InstanceFileName((fs::path(config.stemsDir) / (SafeFileName(stem.name) + ".wav")).string(), instance);
        if (!f.writer->Open(path, f.channels, rate, error))
            return false;
        report.files.push_back(path);
        files.push_back(std::move(f));
    }
    return true;
}

}  // namespace

double SChannelStats::Rms() const
{
    return samples > 0 ? std::sqrt(sumSquares / static_cast<double>(samples)) : 0.0;
}

void SChannelStats::Add(const float* data, int frames)
{
    // One pass, branch-free for ordinary samples.
    float blockPeak = 0.0f;
    double blockSquares = 0.0;
    for (int i = 0; i < frames; ++i) {
        const float v = data[i];
        const float magnitude = std::fabs(v);
        if (!(magnitude <= std::numeric_limits<float>::max())) {
            ++(std::isnan(v) ? nans : infinities);
            continue;
        }
        if (magnitude != 0.0f && magnitude < std::numeric_limits<float>::min())
            ++denormals;
        blockPeak = std::max(blockPeak, magnitude);
        blockSquares += static_cast<double>(v) * v;
    }
    peak = std::max(peak, static_cast<double>(blockPeak));
    sumSquares += blockSquares;
    samples += frames;
}

bool RenderOutputIsFinite(const SRenderReport& report)
{
    for (const auto& inst : report.instances)
        for (const auto& c : inst.channels)
            if (!c.Finite())
                return false;
    return true;
}

std::string InstanceFileName(const std::string& path, int instance)
{
    if (instance == 0)
        return path;
    const fs::path p(path);
    return (p.parent_path() / (p.stem().string() + "." + std::to_string(instance) + p.extension().string())).string();
}

bool Render(CPluginSession& session, const SRenderConfig& config, SRenderReport& report, std::string& error)
{
    report = SRenderReport();
    report.sampleRate = config.sampleRate;
    report.blockSize = config.blockSize;
    if (!(config.sampleRate >= 1000.0 && config.sampleRate <= 1536000.0)) {
        error = "--rate must be from 1000 to 1536000 Hz";
        return false;
    }
    if (config.blockSize < 1 || config.blockSize > 65536) {
        error = "block size must be from 1 to 65536";
        return false;
    }
    if (!(config.seconds >= 0.0) || !(config.tail >= 0.0) || config.seconds > 86400.0 || config.tail > 86400.0 ||
        !(config.tempo >= 0.0 && config.tempo <= 10000.0)) {
        error = "--seconds and --tail must be from 0 to 86400, --tempo from 0 to 10000";
        return false;
    }
    if (std::isnan(config.editorAt) || config.editorAt > 86400.0) {
        error = "--editor-at must be from 0 to 86400";
        return false;
    }
    if (config.instances < 1 || config.instances > 256) {
        error = "instances must be from 1 to 256";
        return false;
    }
    const SEffectInfo* effect = session.FindEffect(config.effectID, error);
    if (!effect)
        return false;
    const SComponentInfo* component = FindProcessingComponent(*effect);
    if (!component) {
        error = "the effect registered no native process procedure";
        return false;
    }
    auto process = reinterpret_cast<AAX_CProcessProc>(component->processProcs.front().proc);

    CMidiSchedule schedule;
    double fileTempo = 120.0;
    SetHostPhase("reading the MIDI file");
    if (!config.midiPath.empty() &&
        !schedule.LoadSmf(config.midiPath, config.sampleRate, config.tempo, error, &fileTempo))
        return false;

    STransportState transport;
    transport.sampleRate = config.sampleRate;
    transport.tempo = config.tempo > 0.0 ? config.tempo : fileTempo;
    transport.meterNumerator = config.meterNumerator;
    transport.meterDenominator = config.meterDenominator;
    transport.playing = !config.stopped;

    const int64_t total = config.seconds > 0.0
                              ? static_cast<int64_t>(std::llround(config.seconds * config.sampleRate))
                              : schedule.LastSample() + static_cast<int64_t>(std::llround(config.tail * config.sampleRate));
    report.totalSamples = total;

    SInstanceConfig instanceConfig;
    instanceConfig.sampleRate = config.sampleRate;
    instanceConfig.maxBlock = config.blockSize;
    instanceConfig.outputChannels = OutputChannelCount(*component);

    SetPhase("instance creation");
    std::vector<std::unique_ptr<CHostInstance>> instances;
    for (int i = 0; i < config.instances; ++i) {
        instances.push_back(std::make_unique<CHostInstance>(*effect, *component, instanceConfig, transport));
        if (!instances.back()->Create(error)) {
            // The first instance's failure is the bundle's; later ones are news.
            if (i > 0)
                error = "instance " + std::to_string(i) + ": " + error;
            return false;
        }
    }

    if (!config.loadState.empty()) {
        SetHostPhase("reading the state file");
        std::vector<SStateChunk> chunks;
        if (!ReadStateFile(config.loadState, chunks, error))
            return false;
        SetPhase("state restore (SetChunk)");
        for (auto& inst : instances)
            if (!LoadEffectState(*inst->Effect(), chunks, error))
                return false;
    }

    if (config.bypass) {
        CHostString bypassID;
        if (instances.front()->Effect()->GetMasterBypassParameter(&bypassID) != AAX_SUCCESS || bypassID.Text().empty()) {
            error = "the effect names no master bypass parameter";
            return false;
        }
        for (auto& inst : instances) {
            const AAX_Result r = inst->SetParameter(bypassID.Text(), 1.0);
            if (r != AAX_SUCCESS) {
                error = "setting " + bypassID.Text() + " failed with " + ResultText(r);
                return false;
            }
        }
    }

    struct SPendingSet {
        SParameterSet set;
        int64_t sample;
        bool done;
    };
    std::vector<SPendingSet> pending;
    for (const auto& s : config.sets)
        pending.push_back({s, static_cast<int64_t>(std::llround(s.atSeconds * config.sampleRate)), false});

    std::vector<std::vector<SOutputFile>> outputs(instances.size());
    report.instances.resize(instances.size());
    for (size_t i = 0; i < instances.size(); ++i) {
        if (!OpenOutputs(*component, config, static_cast<int>(i), outputs[i], report.instances[i], error))
            return false;
        report.instances[i].channels.resize(static_cast<size_t>(instanceConfig.outputChannels));
    }

    std::vector<void*> contexts;
    for (auto& inst : instances)
        contexts.push_back(inst->Context());
    std::vector<AAX_CMidiPacket> packets;
    packets.reserve(256);
    std::vector<const float*> channelPtrs;
    CProgressBar progress(config.progress && !config.json && isatty(STDOUT_FILENO));

    CEditorSession editor;
    const int64_t editorSample =
        config.editorAt < 0.0 ? -1 : static_cast<int64_t>(std::llround(config.editorAt * config.sampleRate));

    SetPhase("rendering");
    int64_t nextWakeup = 0;
    const auto started = std::chrono::steady_clock::now();
    for (const SBlock& block : PlanBlocks(total, config.blockSize)) {
        transport.samplePosition = block.start;
        for (auto& p : pending) {
            if (p.done || p.sample >= block.start + block.frames)
                continue;
            p.done = true;
            for (auto& inst : instances) {
                const AAX_Result r = inst->SetParameter(p.set.id, p.set.value);
                if (r != AAX_SUCCESS) {
                    error = "setting parameter \"" + p.set.id + "\" failed with " + ResultText(r);
                    return false;
                }
            }
        }
        if (editorSample >= 0 && !editor.IsOpen() && editorSample < block.start + block.frames) {
            SetPhase("opening the view");
            if (!editor.Open(*instances.front(), error))
                return false;
            SetPhase("rendering");
        }
        schedule.PacketsForBlock(block.start, block.frames, packets);
        for (auto& inst : instances) {
            inst->PrepareBlock(block.start, block.frames, packets);
            if (config.testInput)
                for (int ch = 0; ch < inst->InputChannels(); ++ch) {
                    float* in = inst->Input(ch);
                    for (int s = 0; s < block.frames; ++s)
                        in[s] = TestInputSample(ch, block.start + s, config.sampleRate);
                }
        }
        process(contexts.data(), contexts.data() + contexts.size());
        ++report.processCalls;
        for (size_t i = 0; i < instances.size(); ++i) {
            const CHostInstance& inst = *instances[i];
            for (int ch = 0; ch < inst.OutputChannels(); ++ch)
                report.instances[i].channels[static_cast<size_t>(ch)].Add(inst.Output(ch), block.frames);
            for (auto& f : outputs[i]) {
                channelPtrs.clear();
                for (int c = 0; c < f.channels; ++c)
                    channelPtrs.push_back(inst.Output(f.firstChannel + c));
                if (!f.writer->Write(channelPtrs.data(), block.frames)) {
                    error = "writing audio failed";
                    return false;
                }
            }
        }
        if (editor.IsOpen()) {
            SetPhase("the view's timer");
            editor.Idle();
            SetPhase("rendering");
        }
        // A host wakes each data model about every 50 ms on its main thread.
        if (block.start + block.frames >= nextWakeup) {
            SetPhase("the data model's timer (TimerWakeup)");
            for (auto& inst : instances)
                inst->Effect()->TimerWakeup();
            nextWakeup += std::max<int64_t>(1, std::llround(0.05 * config.sampleRate));
            SetPhase("rendering");
        }
        progress.Show(block.start + block.frames, total);
    }
    progress.Finish();
    if (editor.IsOpen()) {
        SetPhase("closing the view");
        editor.Close();
    }
    report.wallSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    for (auto& files : outputs)
        for (auto& f : files)
            f.writer->Close();

    if (!config.saveState.empty()) {
        SetPhase("state save (GetChunk)");
        std::vector<SStateChunk> chunks;
        if (!SaveEffectState(*instances.front()->Effect(), chunks, error))
            return false;
        if (!WriteStateFile(config.saveState, chunks, error))
            return false;
    }

    SetPhase("instance destruction");
    for (size_t i = 0; i < instances.size(); ++i) {
        SInstanceReport& r = report.instances[i];
        r.midiIn = instances[i]->MidiInCount();
        if (const CHostMidiNode* out = instances[i]->MidiOut())
            r.midiOut = out->Posted();
        r.automation = instances[i]->Controller()->Automation();
        instances[i]->Destroy();
    }
    return true;
}

nlohmann::json RenderReportToJson(const SRenderReport& report)
{
    using nlohmann::json;
    json instances = json::array();
    for (const auto& inst : report.instances) {
        json channels = json::array();
        for (const auto& c : inst.channels)
            channels.push_back({{"peak", c.peak}, {"rms", c.Rms()}, {"nan", c.nans}, {"inf", c.infinities},
                                {"denormal", c.denormals}});
        json midiOut = json::array();
        for (const auto& m : inst.midiOut) {
            json bytes = json::array();
            for (uint32_t b = 0; b < std::min<uint32_t>(m.packet.mLength, 4); ++b)
                bytes.push_back(m.packet.mData[b]);
            midiOut.push_back({{"sample", m.samplePosition}, {"bytes", bytes}});
        }
        json automation = json::array();
        for (const auto& a : inst.automation)
            automation.push_back({{"kind", a.kind}, {"parameter", a.parameterID}, {"value", a.value},
                                  {"sample", a.samplePosition}, {"origin", a.fromHost ? "host" : "plugin"}});
        instances.push_back({{"files", inst.files}, {"channels", channels}, {"midi_in", inst.midiIn},
                             {"midi_out", midiOut}, {"automation", automation}});
    }
    return {{"format", "aaxhost-render-1"},
            {"sample_rate", report.sampleRate},
            {"block_size", report.blockSize},
            {"samples", report.totalSamples},
            {"seconds", report.sampleRate > 0 ? static_cast<double>(report.totalSamples) / report.sampleRate : 0.0},
            {"wall_seconds", report.wallSeconds},
            {"process_calls", report.processCalls},
            {"instances_per_call", report.instances.size()},
            {"instances", instances}};
}

void PrintRenderReport(std::ostream& out, const SRenderReport& report)
{
    char line[160];
    std::snprintf(line, sizeof line, "Rendered %lld samples (%.3f s) at %.0f Hz in blocks of %d, %.3f s wall time\n",
                  static_cast<long long>(report.totalSamples),
                  report.sampleRate > 0 ? static_cast<double>(report.totalSamples) / report.sampleRate : 0.0,
                  report.sampleRate, report.blockSize, report.wallSeconds);
    out << line;
    for (size_t i = 0; i < report.instances.size(); ++i) {
        const SInstanceReport& inst = report.instances[i];
        size_t requests = 0;
        for (const auto& a : inst.automation)
            requests += (a.kind != "register" && a.kind != "unregister") ? 1 : 0;
        out << "Instance " << i << ": " << inst.midiIn << " MIDI events in, " << inst.midiOut.size()
            << " out, " << requests << " automation requests\n";
        for (size_t c = 0; c < inst.channels.size(); ++c) {
            const SChannelStats& s = inst.channels[c];
            // Silent stems would only bury the channels that matter.
            if (c >= 2 && s.peak == 0.0 && s.Finite() && s.denormals == 0)
                continue;
            std::snprintf(line, sizeof line, "  channel %2zu  peak %8.2f dBFS  rms %8.2f dBFS", c,
                          s.peak > 0 ? 20.0 * std::log10(s.peak) : -INFINITY,
                          s.Rms() > 0 ? 20.0 * std::log10(s.Rms()) : -INFINITY);
            out << line;
            if (!s.Finite() || s.denormals > 0)
                out << "  NaN " << s.nans << "  Inf " << s.infinities << "  denormal " << s.denormals;
            out << "\n";
        }
        for (const auto& f : inst.files)
            out << "  wrote " << f << "\n";
    }
}

}  // namespace AAXHost
