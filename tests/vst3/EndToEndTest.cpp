// A "vst3" AAX bundle around our test instrument, loaded by aaxhost exactly
// as a host loads it, against the instrument hosted directly (aaxhost
// render-direct) with the same MIDI file, rate and buffers.
#include <gtest/gtest.h>

#include "TestSupport.h"

using namespace AAXHostTest;

TEST(Vst3EndToEnd, RenderMatchesTheInstrumentDrivenDirectly)
{
    const std::string dir = TempDir("vst3_e2e_render");
    const std::string midi = dir + "/notes.mid";
    // At 120 BPM a quarter note is 22050 samples; 0.3 beats lands inside a block.
    WriteMidiFile(midi, {{0.0, 1.0, 60, 100}, {0.3, 0.9, 67, 90}, {1.2, 0.5, 72, 127}});
    const std::vector<std::string> common = {"--midi", midi, "--rate", "44100", "--block", "256", "--seconds", "1"};
    std::vector<std::vector<float>> renders[2];
    int rate = 0;
    for (const bool direct : {false, true}) {
        const std::string out = dir + (direct ? "/direct.wav" : "/out.wav");
        std::vector<std::string> args = {direct ? "render-direct" : "render",
                                         direct ? VST3_TEST_BUNDLE_DIR "/MrvTestSynth.vst3"
                                                : VST3E2E_BUNDLE_DIR "/MrvTestSynth.aaxplugin",
                                         "--out", out};
        args.insert(args.end(), common.begin(), common.end());
        const SRunResult run = RunHost(args);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        renders[direct] = ReadWavChannels(out, &rate);
        ASSERT_EQ(renders[direct].size(), 2u);
        EXPECT_EQ(rate, 44100);
    }
    ASSERT_EQ(renders[0][0].size(), renders[1][0].size());
    EXPECT_EQ(MaxDifference(renders[0][0], renders[1][0]), 0.0);
    EXPECT_EQ(MaxDifference(renders[0][1], renders[1][1]), 0.0);
    EXPECT_GT(Peak(renders[0][0]), 0.05);
}
