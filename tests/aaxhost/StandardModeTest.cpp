// Debian's VST 2 instruments wrapped in STANDARD mode, played as a user
// would: the right pitch at every rate and buffer size, and the plug-ins'
// own parameter defaults. Chords are in the identity tests' phrase.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "DirectRender.h"
#include "SignalAnalysis.h"
#include "TestSupport.h"

using namespace AAXHostTest;
using namespace AAXDirect;

namespace {

struct SInstrument {
    const char* name;
    const char* library;
    // Kars plays up to 0.8 % flat when hosted directly (its strings are a
    // whole number of samples long): its own direct pitch is the reference.
    bool ownTuning;
};

const SInstrument kInstruments[] = {
    {"amsynth", "/usr/lib/vst/amsynth_vst.so", false},
    {"Kars", "/usr/lib/vst/Kars-vst.so", true},
    {"Nekobi", "/usr/lib/vst/Nekobi-vst.so", false},
};

const int kRates[] = {44100, 48000, 96000};
// 8192 is longer than the block size the wrapper announces: it goes in slices.
const int kBlocks[] = {64, 1000, 4096, 8192};

// The pitch window: past the attack, before a plucked note dies away.
size_t PitchBegin(int rate) { return static_cast<size_t>(0.15 * rate); }
size_t PitchEnd(int rate) { return static_cast<size_t>(0.45 * rate); }

// One second of a MIDI file played by the library hosted directly as a
// standard host would; the left channel.
std::vector<float> RenderDirectLeft(const std::string& library, const std::string& midi, int rate, int block)
{
    AAXHost::CMidiSchedule schedule;
    std::string error;
    EXPECT_TRUE(schedule.LoadSmf(midi, rate, 120.0, error)) << error;
    SDirectRenderConfig config;
    config.libraryPath = library;
    config.sampleRate = rate;
    config.blockSize = block;
    config.totalSamples = rate;
    config.standardHost = true;
    SDirectRenderResult result;
    EXPECT_TRUE(RenderDirect(config, schedule, result, error)) << error;
    return result.outputs.empty() ? std::vector<float>() : result.outputs[0];
}

double DirectPitch(const std::string& library, const std::string& dir, int key, int rate)
{
    WriteMidiFile(dir + "/direct.mid", {{0.0, 2.0, key, 100}});
    return Fundamental(RenderDirectLeft(library, dir + "/direct.mid", rate, 512), rate, PitchBegin(rate), PitchEnd(rate));
}

// Renders one second of `notes` (beats at 120 BPM) and gives the main left channel.
std::vector<float> Render(const std::string& bundle, const std::string& dir, const std::vector<SNote>& notes,
                          int rate, int block, std::vector<std::string> extra = {})
{
    const std::string midi = dir + "/notes.mid";
    WriteMidiFile(midi, notes);
    const std::string wav = dir + "/out.wav";
    std::vector<std::string> args = {"render", bundle, "--midi", midi, "--rate", std::to_string(rate), "--block",
                                     std::to_string(block), "--seconds", "1", "--out", wav};
    args.insert(args.end(), extra.begin(), extra.end());
    const SRunResult r = RunHost(args);
    EXPECT_EQ(r.exitCode, 0) << r.err;
    const auto channels = ReadWavChannels(wav);
    return channels.empty() ? std::vector<float>() : channels[0];
}

class StandardInstrument : public ::testing::TestWithParam<SInstrument> {
protected:
    void SetUp() override
    {
        ASSERT_TRUE(std::filesystem::exists(GetParam().library)) << GetParam().library
                                                                  << " is missing: run scripts/setup";
        mDir = TempDir(std::string("standard-") + GetParam().name);
    }
    std::string mDir;
};

}  // namespace

TEST_P(StandardInstrument, SingleNoteHasItsPitchAtEveryRateAndBufferSize)
{
    const int key = 57;  // 220 Hz
    for (int rate : kRates) {
        const double expected =
            GetParam().ownTuning ? DirectPitch(GetParam().library, mDir, key, rate) : KeyFrequency(key);
        for (int block : kBlocks) {
            const auto left = Render(StandardBundle(GetParam().name), mDir, {{0.0, 2.0, key, 100}}, rate, block);
            const double f = Fundamental(left, rate, PitchBegin(rate), PitchEnd(rate));
            EXPECT_NEAR(f / expected, 1.0, 0.005) << rate << " Hz, blocks of " << block << ": " << f << " Hz";
        }
    }
}

TEST_P(StandardInstrument, ParameterDefaultsAreThePlugInsOwn)
{
    const SRunResult r = RunHost({"params", StandardBundle(GetParam().name), "--json"});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    const nlohmann::json doc = r.Json();
    EXPECT_EQ(doc["wrapper"]["host_mode"], "STANDARD");
    const nlohmann::json& params = doc["parameters"];

    AAXHost::CMidiSchedule nothing;
    SDirectRenderConfig config;
    config.libraryPath = GetParam().library;
    config.standardHost = true;
    SDirectRenderResult direct;
    std::string error;
    ASSERT_TRUE(RenderDirect(config, nothing, direct, error)) << error;
    // Plus the master bypass, and a program list where the plug-in has programs.
    std::map<std::string, nlohmann::json> byId;
    for (const auto& p : params)
        byId[p["id"].get<std::string>()] = p;
    const size_t programs = byId.count(std::to_string(direct.initialParameters.size()));
    ASSERT_EQ(params.size(), direct.initialParameters.size() + 1 + programs) << r.out;
    for (size_t i = 0; i < direct.initialParameters.size(); ++i) {
        const nlohmann::json& p = byId[std::to_string(i)];
        EXPECT_FLOAT_EQ(p["default"].get<float>(), direct.initialParameters[i]) << p["name"];
    }
}

INSTANTIATE_TEST_SUITE_P(Debian, StandardInstrument, ::testing::ValuesIn(kInstruments),
                         [](const ::testing::TestParamInfo<SInstrument>& info) { return std::string(info.param.name); });
