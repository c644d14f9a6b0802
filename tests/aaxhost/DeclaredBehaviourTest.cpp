// What a STANDARD wrapper sets around its plug-in as mainstream hosts do,
// seen from inside the plug-in through the built bundles and aaxhost: the
// floating-point mode of the process call, the offline notification, the
// plug-in's latency and tail, and its auxiliary output buses.
// CLASSIC bundles of the same plug-ins show that nothing changed for them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <string>
#include <vector>

#include "DirectRender.h"
#include "declaring/DeclaringShape.h"
#include "TestSignal.h"
#include "TestSupport.h"

using namespace AAXHostTest;
using AAXHost::TestInputSample;
using MrvTest::LevelOf;

namespace {

const std::string kProbeClassic = std::string(AAXHOST_BUNDLE_DIR) + "/Probe.aaxplugin";
const std::string kProbeStandard = std::string(AAXHOST_BUNDLE_DIR) + "/standard/Probe.aaxplugin";
const std::string kSynthStandard = std::string(AAXHOST_BUNDLE_DIR) + "/standard/MrvTestSynth.aaxplugin";

std::vector<std::string> LinesStartingWith(const std::string& path, const std::string& prefix)
{
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        if (line.rfind(prefix, 0) == 0)
            lines.push_back(line);
    return lines;
}

// The probe's "mode" lines (one per process call) of a short render.
std::vector<std::string> ProbeModes(const std::string& bundle, const std::string& name,
                                    std::vector<std::string> extra = {})
{
    const std::string dir = TempDir(name);
    const std::string log = dir + "/probe.log";
    std::vector<std::string> args = {"render", bundle, "--seconds", "0.05", "--block", "512", "--out", dir + "/out.wav"};
    args.insert(args.end(), extra.begin(), extra.end());
    const SRunResult r = RunHost(args, {"VST2PROBE_LOG=" + log});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    return LinesStartingWith(log, "mode ");
}

}  // namespace

// Inside each process call: STANDARD flushes denormals and gives the VST 2
// process level (real time on the audio thread by default, offline once the
// host said so); CLASSIC does neither, as it never did.
TEST(Declared, StandardFlushesDenormalsAndFollowsTheOfflineNotificationClassicNever)
{
    const std::vector<std::string> realtime = ProbeModes(kProbeStandard, "standard-realtime");
    ASSERT_EQ(realtime.size(), 5u);  // 2400 samples in buffers of 512
    for (const std::string& line : realtime) {
        EXPECT_EQ(line.rfind("mode ftz=1 daz=1 ", 0), 0u) << line;
        EXPECT_NE(line.find(" level=2"), std::string::npos) << line;
    }
    const std::vector<std::string> offline = ProbeModes(kProbeStandard, "standard-offline", {"--offline"});
    ASSERT_FALSE(offline.empty());
    for (const std::string& line : offline)
        EXPECT_NE(line.find(" level=4"), std::string::npos) << line;
    const std::vector<std::string> classic = ProbeModes(kProbeClassic, "classic-offline", {"--offline"});
    ASSERT_EQ(classic.size(), 5u);
    for (const std::string& line : classic) {
        EXPECT_EQ(line.rfind("mode ftz=0 daz=0 ", 0), 0u) << line;
        EXPECT_NE(line.find(" level=0"), std::string::npos) << line;
    }
}

// VST 3: the set-up changes only with the component switched off, and every
// process call after the notification runs in offline mode (kOffline = 2).
TEST(Declared, Vst3IsSetUpAgainOfflineWithTheComponentSwitchedOffAndOn)
{
    const std::string dir = TempDir("vst3-offline");
    const std::string trace = dir + "/trace.txt";
    const SRunResult r = RunHost({"render", kSynthStandard, "--seconds", "0.05", "--offline", "--out", dir + "/out.wav"},
                                 {"MRV_VST3_TRACE=" + trace});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    std::vector<std::string> sequence;
    for (const std::string& line : LinesStartingWith(trace, "proc.")) {
        if (line.rfind("proc.setupProcessing", 0) == 0)
            sequence.push_back(line.substr(0, line.find(" size=")));
        else if (line.rfind("proc.setActive", 0) == 0 || line.rfind("proc.setProcessing", 0) == 0)
            sequence.push_back(line);
        else if (line.rfind("proc.process ", 0) == 0 && (sequence.empty() || sequence.back() != "process"))
            sequence.push_back("process");
    }
    // The notification comes before the first buffer: off, offline set-up,
    // on, and only then processing.
    const auto offline = std::find(sequence.begin(), sequence.end(), "proc.setupProcessing mode=2");
    ASSERT_NE(offline, sequence.end()) << testing::PrintToString(sequence);
    ASSERT_TRUE(offline != sequence.begin() && offline + 1 != sequence.end());
    EXPECT_EQ(*(offline - 1), "proc.setActive 0");
    EXPECT_EQ(*(offline + 1), "proc.setActive 1");
    EXPECT_EQ(std::find(sequence.begin(), offline, "process"), offline) << testing::PrintToString(sequence);
    EXPECT_NE(std::find(offline, sequence.end(), "process"), sequence.end());

    const SRunResult realtime = RunHost({"render", kSynthStandard, "--seconds", "0.05", "--out", dir + "/rt.wav"},
                                        {"MRV_VST3_TRACE=" + dir + "/rt.txt"});
    ASSERT_EQ(realtime.exitCode, 0) << realtime.err;
    for (const std::string& line : LinesStartingWith(dir + "/rt.txt", "proc.setupProcessing"))
        EXPECT_EQ(line.rfind("proc.setupProcessing mode=0 ", 0), 0u) << line;
}

// --- Latency ---------------------------------------------------------------

namespace {

const std::string kLatencyStandard = std::string(AAXHOST_BUNDLE_DIR) + "/standard/Latency.aaxplugin";
const std::string kLatencyClassic = std::string(AAXHOST_BUNDLE_DIR) + "/Latency.aaxplugin";
const std::string kDeclared = std::string(AAXHOST_BUNDLE_DIR) + "/declared";
constexpr int kRate = 48000;

// The test input's first channel, as aaxhost feeds it.
float Input(int64_t sample) { return TestInputSample(0, sample, kRate); }

// How many samples of `out` differ from the input `delay` samples earlier
// (silence before the input began), from `from` on.
size_t SamplesOutOfTime(const std::vector<float>& out, int64_t delay, size_t from = 0)
{
    size_t wrong = 0;
    for (size_t s = from; s < out.size(); ++s) {
        const int64_t source = static_cast<int64_t>(s) - delay;
        const float expected = source < 0 ? 0.0f : Input(source);
        wrong += out[s] != expected ? 1 : 0;
    }
    return wrong;
}

}  // namespace

// The plug-in's latency is its parameter: 0.25 gives 500 samples, and every
// change reaches the host through SetSignalLatency, in order.
TEST(Latency, TheReportedLatencyFollowsEveryChange)
{
    const SRunResult params = RunHost({"params", kLatencyStandard, "--json"});
    ASSERT_EQ(params.exitCode, 0) << params.err;
    EXPECT_EQ(params.Json()["wrapper"]["latency"], 500) << params.out;
    const SRunResult described = RunHost({"describe", kLatencyStandard, "--json"});
    ASSERT_EQ(described.exitCode, 0) << described.err;
    EXPECT_EQ(described.Json()["wrapper"]["latency"], 500) << described.out;

    const std::string dir = TempDir("latency-changes");
    const SRunResult r = RunHost({"render", kLatencyStandard, "--seconds", "0.4", "--test-input", "--set",
                                  "0=0.1@0.1", "--set", "0=0.8@0.2", "--set", "0=0@0.3", "--json", "--out",
                                  dir + "/out.wav"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const nlohmann::json report = r.Json();
    const nlohmann::json& instance = report["instances"][0];
    EXPECT_EQ(instance["latencies"], nlohmann::json::parse("[500, 200, 1600, 0]")) << r.out;
    EXPECT_EQ(instance["latency"], 0);

    // CLASSIC never reported one.
    const SRunResult classic = RunHost({"params", kLatencyClassic, "--json"});
    ASSERT_EQ(classic.exitCode, 0) << classic.err;
    EXPECT_EQ(classic.Json()["wrapper"]["latency"], 0);
}

// The compensated render is the plug-in hosted directly moved earlier by its
// latency, sample for sample: here, the input itself.
TEST(Latency, CompensatedRenderLinesUpWithThePlugInHostedDirectly)
{
    const std::string dir = TempDir("latency-compensate");
    const SRunResult r = RunHost({"render", kLatencyStandard, "--seconds", "0.25", "--block", "333", "--test-input",
                                  "--compensate", "--json", "--out", dir + "/out.wav"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.Json()["latency_compensated"], 500) << r.out;
    const auto wrapped = ReadWavChannels(dir + "/out.wav");
    ASSERT_EQ(wrapped.size(), 2u);
    ASSERT_EQ(wrapped[0].size(), 12000u);  // as long as asked

    AAXDirect::SDirectRenderConfig config;
    config.libraryPath = AAXHOST_LATENCY_VST2;
    config.sampleRate = kRate;
    config.blockSize = 333;
    config.totalSamples = 12000 + 500;
    config.testInput = true;
    config.standardHost = true;
    AAXHost::CMidiSchedule none;
    AAXDirect::SDirectRenderResult direct;
    std::string error;
    ASSERT_TRUE(AAXDirect::RenderDirect(config, none, direct, error)) << error;
    EXPECT_EQ(direct.latency, 500);
    for (size_t c = 0; c < 2; ++c) {
        const std::vector<float> moved(direct.outputs[c].begin() + 500, direct.outputs[c].end());
        EXPECT_EQ(MaxDifference(wrapped[c], moved), 0.0) << "channel " << c;
    }
    EXPECT_EQ(SamplesOutOfTime(wrapped[0], 0), 0u);
}

// Switching the master bypass on plays the input as late as the plug-in did,
// on the main pair and every stem; switched off, the plug-in is in time again
// once its own delay line (not run while bypassed) has refilled.
TEST(Latency, BypassToggledMidRenderKeepsTime)
{
    const std::string dir = TempDir("latency-bypass");
    const SRunResult r = RunHost({"render", kLatencyStandard, "--seconds", "0.3", "--block", "256", "--test-input",
                                  "--set", "MasterBypassID=1@0.1", "--set", "MasterBypassID=0@0.2", "--out",
                                  dir + "/out.wav", "--stems", dir + "/stems"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const auto out = ReadWavChannels(dir + "/out.wav");
    ASSERT_EQ(out.size(), 2u);
    // A timed set applies from the start of the buffer that holds its time.
    const size_t on = 4800 / 256 * 256, off = 9600 / 256 * 256;
    const std::vector<float> untilOff(out[0].begin(), out[0].begin() + static_cast<long>(off));
    EXPECT_EQ(SamplesOutOfTime(untilOff, 500), 0u) << "the plug-in, then the bypass";
    EXPECT_EQ(SamplesOutOfTime(out[0], 500, off + 500), 0u) << "the plug-in again";
    // In between, the plug-in plays what its delay line held when bypassed.
    EXPECT_GT(SamplesOutOfTime(out[0], 500, off), 0u);
    // Bypassed, stem 3's left channel is input 8, as late.
    const auto stem = ReadWavChannels(dir + "/stems/OutputStem_3.wav");
    ASSERT_EQ(stem.size(), 2u);
    size_t wrong = 0;
    for (size_t s = on; s < off; ++s)
        wrong += stem[0][s] != TestInputSample(8, static_cast<int64_t>(s) - 500, kRate) ? 1 : 0;
    EXPECT_EQ(wrong, 0u);
}

// Debian plug-ins that declare a latency once they run (a look-ahead
// limiter each) report it through the wrapper as they do hosted directly.
TEST(Latency, DebianPluginsReportTheLatencyTheyDeclareHostedDirectly)
{
    for (const std::string name : {"ZaMaximX2", "ZaMaximX2v3", "LspLimiter"}) {
        const std::string bundle = std::string(AAXHOST_BUNDLE_DIR) + "/latency/" + name + ".aaxplugin";
        const std::string dir = TempDir("latency-" + name);
        const SRunResult wrapped =
            RunHost({"render", bundle, "--seconds", "0.5", "--test-input", "--json", "--out", dir + "/out.wav"});
        ASSERT_EQ(wrapped.exitCode, 0) << name << ": " << wrapped.err;
        const SRunResult direct = RunHost({"render-direct", bundle, "--seconds", "0.5", "--test-input", "--json"});
        ASSERT_EQ(direct.exitCode, 0) << name << ": " << direct.err;
        const int latency = wrapped.Json()["instances"][0]["latency"].get<int>();
        EXPECT_GT(latency, 0) << name;
        EXPECT_EQ(latency, direct.Json()["latency"].get<int>()) << name << ": " << wrapped.out;
    }
}

// A VST 3 effect announces each new latency with kLatencyChanged; the wrapper
// switches it off and on, reads the latency again and reports it (the
// compensated render, aaxhost's own, is the VST 2 case above).
TEST(Latency, Vst3ChangesAreReadWithTheComponentSwitchedOffAndOnAndReported)
{
    const std::string bundle = kDeclared + "/STANDARD/MrvTestLatency.aaxplugin";
    const std::string dir = TempDir("vst3-latency");
    const std::string trace = dir + "/trace.txt";
    const SRunResult r = RunHost({"render", bundle, "--seconds", "0.4", "--test-input", "--set", "0=0.1@0.1", "--set",
                                  "0=0.8@0.2", "--set", "0=0@0.3", "--json", "--out", dir + "/out.wav"},
                                 {"MRV_VST3_TRACE=" + trace});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.Json()["instances"][0]["latencies"], nlohmann::json::parse("[500, 200, 1600, 0]")) << r.out;
    // Each announcement: off, on, and the latency read once it is on.
    const std::vector<std::string> lines = LinesStartingWith(trace, "declaring.");
    size_t announced = 0;
    for (auto at = lines.begin(); (at = std::find_if(at, lines.end(), [](const std::string& line) {
                                       return line.rfind("declaring.restartComponent", 0) == 0;
                                   })) != lines.end();
         ++at) {
        ++announced;
        const auto off = std::find(at, lines.end(), "declaring.setActive 0");
        const auto on = std::find(off, lines.end(), "declaring.setActive 1");
        ASSERT_NE(on, lines.end()) << testing::PrintToString(lines);
        EXPECT_EQ(std::find(at, off, "declaring.setActive 1"), off) << "switched off first";
        ASSERT_NE(on + 1, lines.end());
        EXPECT_EQ((on + 1)->rfind("declaring.getLatencySamples", 0), 0u) << *(on + 1);
    }
    EXPECT_EQ(announced, 3u);
}

// --- Tail --------------------------------------------------------------------

namespace {
nlohmann::json RenderWithoutLength(const std::string& bundle, const std::string& name, std::string* err = nullptr)
{
    const std::string dir = TempDir(name);
    const SRunResult r = RunHost({"render", bundle, "--test-input", "--json", "--out", dir + "/out.wav"});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    if (err)
        *err = r.err;
    return r.exitCode == 0 ? r.Json() : nlohmann::json();
}
}  // namespace

// Without --tail a render plays what the plug-in declares: at least the
// usual two seconds, at most thirty, with a note when capped; CLASSIC never
// asks.
TEST(Tail, RenderPlaysTheTailThePluginDeclares)
{
    const nlohmann::json vst3 = RenderWithoutLength(kDeclared + "/STANDARD/MrvTestLatency.aaxplugin", "tail-vst3");
    EXPECT_EQ(vst3["tail_source"], "plugin") << vst3.dump();
    EXPECT_EQ(vst3["samples"], 168000);  // 3.5 s at 48 kHz
    const nlohmann::json vst2 = RenderWithoutLength(kLatencyStandard, "tail-vst2");
    EXPECT_EQ(vst2["tail_source"], "plugin");
    EXPECT_EQ(vst2["samples"], 144000);
    const nlohmann::json classic = RenderWithoutLength(kLatencyClassic, "tail-classic");
    EXPECT_EQ(classic["tail_source"], "default");
    EXPECT_EQ(classic["samples"], 96000);

    std::string err;
    const nlohmann::json infinite =
        RenderWithoutLength(kDeclared + "/STANDARD/MrvTestOutputs.aaxplugin", "tail-infinite", &err);
    EXPECT_EQ(infinite["tail_source"], "plugin, capped");
    EXPECT_EQ(infinite["samples"], 30 * 48000);
    EXPECT_NE(err.find("note: the plug-in's tail (infinite) is capped at 30 s"), std::string::npos) << err;

    const SRunResult described = RunHost({"describe", kDeclared + "/STANDARD/MrvTestLatency.aaxplugin", "--json"});
    ASSERT_EQ(described.exitCode, 0) << described.err;
    EXPECT_EQ(described.Json()["wrapper"]["tail"], 168000);
}

// --- Output buses --------------------------------------------------------------

namespace {
// Every channel of a render's stems, in order: stem n is channels 2n, 2n+1.
std::vector<std::vector<float>> StemChannels(const std::string& stemsDir)
{
    std::vector<std::vector<float>> channels;
    for (int stem = 0; stem < 16; ++stem)
        for (auto& channel : ReadWavChannels(stemsDir + "/OutputStem_" + std::to_string(stem) + ".wav"))
            channels.push_back(std::move(channel));
    return channels;
}

// The one level a channel holds throughout, or NaN when it varies.
float ConstantLevel(const std::vector<float>& channel)
{
    if (channel.empty())
        return std::nanf("");
    for (float sample : channel)
        if (sample != channel.front())
            return std::nanf("");
    return channel.front();
}

void RenderOutputs(const std::string& bundle, const std::string& dir, std::vector<std::vector<float>>& main,
                   std::vector<std::vector<float>>& stems)
{
    const SRunResult r = RunHost({"render", bundle, "--seconds", "0.05", "--block", "300", "--out", dir + "/out.wav",
                                  "--stems", dir + "/stems"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    main = ReadWavChannels(dir + "/out.wav");
    stems = StemChannels(dir + "/stems");
    ASSERT_EQ(main.size(), 2u);
    ASSERT_EQ(stems.size(), 32u);
}
}  // namespace

// Four stereo buses and a mono one: each on the next stem (the mono one on
// its left channel), the main bus on the main pair, nothing anywhere else.
// CLASSIC plays the main bus only, as it always did.
TEST(Buses, EachAuxiliaryBusPlaysOnItsOwnStemAndNowhereElse)
{
    std::vector<std::vector<float>> main, stems;
    RenderOutputs(kDeclared + "/STANDARD/MrvTestOutputs.aaxplugin", TempDir("buses-standard"), main, stems);
    if (HasFatalFailure())
        return;
    for (int c = 0; c < 2; ++c)
        EXPECT_EQ(ConstantLevel(main[c]), LevelOf(0, c)) << "main " << c;
    for (int stem = 0; stem < 16; ++stem) {
        for (int c = 0; c < 2; ++c) {
            const float expected = stem < 4 ? LevelOf(stem + 1, c) : (stem == 4 && c == 0 ? LevelOf(5, 0) : 0.0f);
            EXPECT_EQ(ConstantLevel(stems[static_cast<size_t>(2 * stem + c)]), expected) << "stem " << stem << "." << c;
        }
    }
    const SRunResult described = RunHost({"describe", kDeclared + "/STANDARD/MrvTestOutputs.aaxplugin", "--json"});
    ASSERT_EQ(described.exitCode, 0) << described.err;
    const nlohmann::json outputs = described.Json()["wrapper"]["outputs"];
    ASSERT_EQ(outputs.size(), 6u) << outputs.dump();
    EXPECT_EQ(outputs[0]["plays"], "main");
    EXPECT_EQ(outputs[3]["plays"], "stem 2");
    EXPECT_EQ(outputs[3]["name"], "Aux 3");
    EXPECT_EQ(outputs[5]["plays"], "stem 4");
    EXPECT_EQ(outputs[5]["channels"], 1);

    RenderOutputs(kDeclared + "/CLASSIC/MrvTestOutputs.aaxplugin", TempDir("buses-classic"), main, stems);
    if (HasFatalFailure())
        return;
    EXPECT_EQ(ConstantLevel(main[0]), LevelOf(0, 0));
    for (size_t c = 0; c < stems.size(); ++c)
        EXPECT_EQ(ConstantLevel(stems[c]), 0.0f) << "stem channel " << c;
}

// Twenty stereo buses: the first sixteen fill the stems, the rest play into
// scratch buffers and are said to be dropped.
TEST(Buses, BusesPastTheLastStemPlayIntoScratchBuffers)
{
    const std::string bundle = kDeclared + "/STANDARD/MrvTestManyOutputs.aaxplugin";
    std::vector<std::vector<float>> main, stems;
    RenderOutputs(bundle, TempDir("buses-many"), main, stems);
    if (HasFatalFailure())
        return;
    for (int stem = 0; stem < 16; ++stem)
        EXPECT_EQ(ConstantLevel(stems[static_cast<size_t>(2 * stem + 1)]), LevelOf(stem + 1, 1)) << "stem " << stem;
    const SRunResult described = RunHost({"describe", bundle, "--json"});
    ASSERT_EQ(described.exitCode, 0) << described.err;
    const nlohmann::json outputs = described.Json()["wrapper"]["outputs"];
    ASSERT_EQ(outputs.size(), 21u);
    EXPECT_EQ(outputs[16]["plays"], "stem 15");
    for (size_t bus = 17; bus < 21; ++bus)
        EXPECT_EQ(outputs[bus]["plays"], "dropped") << bus;
}
