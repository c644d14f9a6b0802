// Plug-ins that declare more channels than the AAX context carries (the IEM
// suite declares 64 in and 64 out), wrapped in STANDARD: they get every
// channel, play into the ones that exist, and the rest stay scratch.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "TestSupport.h"

using namespace AAXHostTest;

namespace {

SRunResult RenderTestInput(const std::string& name, int block)
{
    const std::string dir = TempDir(name + "-" + std::to_string(block));
    // No display: JUCE plug-ins would otherwise take display 0, which a
    // parallel test's virtual X server may hold and take away mid-render.
    return RunHost({"render", StandardBundle(name), "--test-input", "--seconds", "1", "--block",
                    std::to_string(block), "--out", dir + "/out.wav", "--no-progress", "--json"},
                   {"DISPLAY=:4242"});
}

}  // namespace

// Output c of the wide test plug-in is input c (a quarter-scale sine, none
// from 32 on) plus a marker of 0.001 * (c + 1); its inputs from 32 on must
// be silent on every call although it scribbles on them (else 0.5 more on
// output 0). 5000 samples go in two slices.
TEST(WideChannels, EveryDeclaredChannelIsGivenAndTheContextsOnesCarryTheirOwnSignal)
{
    for (int block : {512, 5000}) {
        SCOPED_TRACE(block);
        const SRunResult run = RenderTestInput("Wide", block);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const nlohmann::json report = run.Json();
        const nlohmann::json& channels = report["instances"][0]["channels"];
        ASSERT_EQ(channels.size(), 34u);  // the main pair, then sixteen stereo stems
        for (size_t c = 0; c < channels.size(); ++c) {
            const double marker = 0.001 * static_cast<double>(c + 1);
            const double sine = c < 32 ? 0.25 : 0.0;
            const double peak = channels[c]["peak"].get<double>();
            EXPECT_GE(peak, 0.96 * sine + marker - 1e-4) << "channel " << c;
            EXPECT_LE(peak, sine + marker + 1e-4) << "channel " << c;
        }
    }
}

// Hosted directly with the same test signal they play (FdnReverb peaks at
// about 0.73); before, the wrapper kept them silent.
TEST(WideChannels, IemPluginsOfSixtyFourChannelsPlay)
{
    for (const char* name : {"FdnReverb", "DualDelay"}) {
        SCOPED_TRACE(name);
        if (!std::filesystem::exists(StandardBundle(name)))
            GTEST_SKIP() << "iem-plugin-suite-vst is not installed";
        const SRunResult run = RenderTestInput(name, 512);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const nlohmann::json report = run.Json();
        const nlohmann::json& channels = report["instances"][0]["channels"];
        EXPECT_GT(channels[0]["peak"].get<double>(), 0.05);
        EXPECT_GT(channels[1]["peak"].get<double>(), 0.05);
    }
}
