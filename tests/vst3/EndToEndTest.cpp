// A "vst3" AAX bundle around our test instrument, loaded by aaxhost exactly
// as a host loads it, against the instrument driven directly.
#include <algorithm>
#include <cmath>

#include <gtest/gtest.h>

#include "DirectSynth.h"
#include "TestSupport.h"

using namespace AAXHostTest;

namespace {

const std::string kBundle = std::string(VST3_E2E_BUNDLE_DIR) + "/MrvTestSynth.aaxplugin";
constexpr double kRate = 44100.0;
constexpr int kBlock = 256;

std::vector<std::string> RenderArgs(const std::string& midi, const std::string& out)
{
    return {"render", kBundle, "--midi", midi, "--out", out, "--rate", "44100", "--block", std::to_string(kBlock),
            "--seconds", "1", "--no-progress"};
}

}  // namespace

TEST(Vst3EndToEnd, RenderMatchesTheInstrumentDrivenDirectly)
{
    const std::string dir = TempDir("vst3_e2e_render");
    const std::string midi = dir + "/notes.mid";
    // At 120 BPM a quarter note is 22050 samples; 0.3 beats lands inside a block.
    WriteMidiFile(midi, {{0.0, 1.0, 60, 100}, {0.3, 0.9, 67, 90}, {1.2, 0.5, 72, 127}});
    const std::string out = dir + "/out.wav";
    const SRunResult run = RunHost(RenderArgs(midi, out));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    int rate = 0;
    const auto channels = ReadWavChannels(out, &rate);
    ASSERT_EQ(channels.size(), 2u);
    EXPECT_EQ(rate, 44100);

    vst3test::CDirectSynth direct(VST3_TEST_BUNDLE_DIR "/MrvTestSynth.vst3", kRate);
    ASSERT_TRUE(direct.ok());
    const std::vector<vst3test::SDirectNote> notes = {
        {0, true, 60, 100},    {6615, true, 67, 90},   {22050, false, 60, 0},
        {26460, true, 72, 127}, {26460, false, 67, 0},  {37485, false, 72, 0}};
    std::vector<float> left, right;
    direct.Render(notes, static_cast<int64_t>(channels[0].size()), kBlock, left, right);
    EXPECT_EQ(MaxDifference(channels[0], left), 0.0);
    EXPECT_EQ(MaxDifference(channels[1], right), 0.0);
    EXPECT_GT(Peak(channels[0]), 0.05);
}
