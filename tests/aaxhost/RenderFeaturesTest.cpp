// Render options end to end: bypass, stems, batches of instances, the
// transport, and what a plug-in sends back (automation, MIDI out).
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>

#include "TestSignal.h"
#include "TestSupport.h"

using namespace AAXHostTest;
using nlohmann::json;

namespace {

const std::string kProbe = Bundle("Probe");
const std::string kTavrion = AAXHOST_DEFAULT_BUNDLE;

// The probe writes (c + 1) / 64 * Alpha on output channel c; Alpha starts at 0.5.
float ProbeLevel(int channel) { return static_cast<float>(channel + 1) / 64.0f * 0.5f; }

// The main output then the 16 stereo stems: all 34 output channels.
std::vector<std::vector<float>> AllOutputs(const std::string& main, const std::string& stems)
{
    auto all = ReadWavChannels(main);
    for (int k = 0; k < 16; ++k) {
        const auto stem = ReadWavChannels(stems + "/OutputStem_" + std::to_string(k) + ".wav");
        EXPECT_EQ(stem.size(), 2u) << k;
        all.insert(all.end(), stem.begin(), stem.end());
    }
    return all;
}

}  // namespace

TEST(Render, StemsCarryTheirOwnOutputChannelsAndBypassCopiesAllThirtyTwoInputs)
{
    const std::string dir = TempDir("stems");
    const SRunResult r = RunHost({"render", kProbe, "--seconds", "0.1", "--block", "64", "--out", dir + "/main.wav",
                                  "--stems", dir + "/stems", "--json"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.Json()["instances"][0]["files"].size(), 17u);
    auto outputs = AllOutputs(dir + "/main.wav", dir + "/stems");
    ASSERT_EQ(outputs.size(), 34u);
    for (int c = 0; c < 34; ++c) {
        ASSERT_EQ(outputs[static_cast<size_t>(c)].size(), 4800u);
        EXPECT_FLOAT_EQ(outputs[static_cast<size_t>(c)][100], ProbeLevel(c)) << "output channel " << c;
    }

    const SRunResult bypass = RunHost({"render", kProbe, "--seconds", "0.05", "--block", "64", "--bypass",
                                       "--test-input", "--out", dir + "/bypass.wav", "--stems", dir + "/bypass"});
    ASSERT_EQ(bypass.exitCode, 0) << bypass.err;
    outputs = AllOutputs(dir + "/bypass.wav", dir + "/bypass");
    ASSERT_EQ(outputs.size(), 34u);
    for (int c = 0; c < 32; ++c)
        for (size_t s = 0; s < outputs[static_cast<size_t>(c)].size(); ++s)
            ASSERT_EQ(outputs[static_cast<size_t>(c)][s], AAXHost::TestInputSample(c, static_cast<int64_t>(s), 48000.0))
                << "channel " << c << " sample " << s;
    // Beyond the 32 copied channels the host's cleared buffers stay silent.
    EXPECT_EQ(Peak(outputs[32]), 0.0);
    EXPECT_EQ(Peak(outputs[33]), 0.0);
}

TEST(Render, ThreeInstancesInOneBatchEachRenderTheWholePart)
{
    const std::string dir = TempDir("instances");
    WriteTestPhrase(dir + "/phrase.mid");
    const auto render = [&](const std::string& out, const std::string& instances) {
        return RunHost({"render", kTavrion, "--midi", dir + "/phrase.mid", "--seconds", "1.5", "--json", "--out",
                        dir + "/" + out, "--instances", instances});
    };
    const SRunResult single = render("single.wav", "1");
    ASSERT_EQ(single.exitCode, 0) << single.err;
    const SRunResult batch = render("batch.wav", "3");
    ASSERT_EQ(batch.exitCode, 0) << batch.err;
    const json j = batch.Json();
    EXPECT_EQ(j["instances_per_call"], 3);
    EXPECT_EQ(j["process_calls"], single.Json()["process_calls"]);
    ASSERT_EQ(j["instances"].size(), 3u);

    const auto reference = ReadWavChannels(dir + "/single.wav");
    ASSERT_EQ(reference.size(), 2u);
    EXPECT_GT(Peak(reference[0]), 1e-3);
    for (const char* name : {"batch.wav", "batch.1.wav", "batch.2.wav"}) {
        const auto out = ReadWavChannels(dir + "/" + name);
        ASSERT_EQ(out.size(), 2u) << name;
        EXPECT_EQ(MaxDifference(out[0], reference[0]), 0.0) << name;
        EXPECT_EQ(MaxDifference(out[1], reference[1]), 0.0) << name;
    }
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(j["instances"][i]["midi_in"], single.Json()["instances"][0]["midi_in"]);
}

TEST(Render, AutomationAndMidiFromThePluginReachTheHost)
{
    const std::string dir = TempDir("probe-back");
    // CC 20 makes the probe automate its parameter 0; notes are echoed out.
    WriteMidiFile(dir + "/probe.mid", {{0.25, 0.5, 60, 100}}, {{0.5, {0xB0, 20, 127}}});
    const SRunResult r = RunHost({"render", kProbe, "--midi", dir + "/probe.mid", "--tempo", "120", "--seconds", "1",
                                  "--block", "256", "--out", dir + "/out.wav", "--json"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const json inst = r.Json()["instances"][0];
    EXPECT_EQ(inst["midi_in"], 3);

    // Note on at 0.25 beat = 6000 samples, note off at 0.75 beat = 18000.
    const json& out = inst["midi_out"];
    ASSERT_EQ(out.size(), 2u) << out.dump();
    EXPECT_EQ(out[0]["sample"], 6000);
    EXPECT_EQ(out[0]["bytes"], json::array({0x90, 60, 100}));
    EXPECT_EQ(out[1]["sample"], 18000);
    EXPECT_EQ(out[1]["bytes"][0], 0x80);

    std::vector<std::string> kinds;
    for (const auto& a : inst["automation"]) {
        if (a["parameter"] != "0" || a["kind"] == "register")
            continue;
        EXPECT_EQ(a["origin"], "plugin");
        kinds.push_back(a["kind"]);
        if (a["kind"] == "set") {
            EXPECT_DOUBLE_EQ(a["value"].get<double>(), 1.0);
        }
    }
    ASSERT_FALSE(kinds.empty()) << inst["automation"].dump();
    EXPECT_EQ(kinds.front(), "touch");
    EXPECT_NE(std::find(kinds.begin(), kinds.end(), "set"), kinds.end());
    EXPECT_EQ(kinds.back(), "release");

    // The set request was answered: Alpha is now 1.0, so the main output
    // doubles after the automation.
    const auto audio = ReadWavChannels(dir + "/out.wav");
    ASSERT_EQ(audio.size(), 2u);
    EXPECT_FLOAT_EQ(audio[0].front(), ProbeLevel(0));
    EXPECT_FLOAT_EQ(audio[0].back(), ProbeLevel(0) * 2.0f);
}

TEST(Render, TransportReachesThePluginEveryBuffer)
{
    const std::string dir = TempDir("transport");
    const std::string log = dir + "/probe.log";
    const SRunResult r = RunHost({"render", kProbe, "--seconds", "0.1", "--rate", "44100", "--block", "1000",
                                  "--tempo", "90", "--meter", "7/8", "--out", dir + "/out.wav"},
                                 {"VST2PROBE_LOG=" + log});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    std::ifstream in(log);
    std::vector<std::string> times;
    for (std::string line; std::getline(in, line);)
        if (line.rfind("time ", 0) == 0)
            times.push_back(line);
    ASSERT_EQ(times.size(), 5u);  // 4410 samples in buffers of 1000
    for (size_t k = 0; k < times.size(); ++k) {
        char expected[200];
        // 90 BPM: 1.5 quarter notes per second.
        std::snprintf(expected, sizeof expected, "time samplePos=%zu sampleRate=44100 ppqPos=%.6f tempo=90.000 sig=7/8 flags=0x2602",
                      k * 1000, static_cast<double>(k * 1000) / 44100.0 * 1.5);
        EXPECT_EQ(times[k].rfind(expected, 0), 0u) << times[k] << "\nexpected " << expected;
    }
}

// aaxhost clears only the outputs a plug-in leaves unwritten, and finds out
// again when the host sets a parameter: the bypass copies 32 channels, so
// the last stem's pair must fall silent, not repeat its last buffer.
TEST(Render, BypassSwitchedOnMidRenderLeavesTheUncopiedStemSilent)
{
    const std::string dir = TempDir("bypass-mid");
    const SRunResult r = RunHost({"render", kProbe, "--seconds", "0.2", "--block", "64", "--test-input", "--set",
                                  "MasterBypassID=1@0.1", "--out", dir + "/main.wav", "--stems", dir + "/stems"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const auto stem = ReadWavChannels(dir + "/stems/OutputStem_15.wav");
    ASSERT_EQ(stem.size(), 2u);
    const size_t switched = 4800 + 64;  // the buffer after 0.1 s at 48 kHz
    EXPECT_FLOAT_EQ(stem[0][100], ProbeLevel(32)) << "the probe writes the pair before the bypass";
    for (size_t c = 0; c < 2; ++c)
        EXPECT_EQ(Peak(std::vector<float>(stem[c].begin() + static_cast<long>(switched), stem[c].end())), 0.0) << c;
}
