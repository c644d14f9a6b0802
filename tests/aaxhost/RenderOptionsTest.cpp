// Command-line values aaxhost refuses before rendering anything, and the
// render's statistics. Where the events of a good file land is checked end
// to end (vst3e2e.*).
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <vector>

#include "MidiSchedule.h"
#include "RenderConfig.h"
#include "RenderReport.h"

using namespace AAXHost;

TEST(RenderOptions, BadParameterSetsMetersAndMidiFilesAreRefused)
{
    SParameterSet s;
    std::string error;
    ASSERT_TRUE(ParseParameterSet("3=0.25@1.5", s, error)) << error;
    EXPECT_EQ(s.id, "3");
    EXPECT_DOUBLE_EQ(s.value, 0.25);
    EXPECT_DOUBLE_EQ(s.atSeconds, 1.5);
    ASSERT_TRUE(ParseParameterSet("MasterBypassID=1", s, error));
    EXPECT_DOUBLE_EQ(s.atSeconds, 0.0);
    for (const char* bad : {"=1", "3", "3=", "3=1.5", "3=-0.1", "3=nan", "3=0.5@", "3=0.5@-1", "3=0.5x"})
        EXPECT_FALSE(ParseParameterSet(bad, s, error)) << bad;
    int32_t n = 0, d = 0;
    ASSERT_TRUE(ParseMeter("7/8", n, d, error));
    EXPECT_EQ(n, 7);
    EXPECT_EQ(d, 8);
    for (const char* bad : {"4", "0/4", "4/0", "a/b", "3.5/4"})
        EXPECT_FALSE(ParseMeter(bad, n, d, error)) << bad;
    CMidiSchedule schedule;
    EXPECT_FALSE(schedule.LoadSmf("/nonexistent/missing.mid", 48000, 0.0, error));
    EXPECT_FALSE(error.empty());
}

// The vectorised statistics against a plain count, on blocks that take each
// path: silence, negative zero, ordinary audio, denormals, NaN and infinity.
TEST(RenderStatistics, EveryPathCountsLikeAPlainLoop)
{
    const float inf = std::numeric_limits<float>::infinity();
    const float nan = std::numeric_limits<float>::quiet_NaN();
    const float tiny = std::numeric_limits<float>::denorm_min();
    const std::vector<std::vector<float>> blocks = {
        std::vector<float>(64, 0.0f), {0.0f, -0.0f, 0.0f}, {0.5f, -0.75f, 0.25f, tiny, -tiny, 0.0f, 0.1f},
        {0.5f, nan, -0.9f, inf, tiny, -inf, 0.2f}, std::vector<float>(1000, -0.3f), {}};
    AAXHost::SChannelStats stats;
    double peak = 0.0, squares = 0.0;
    int64_t samples = 0, nans = 0, infinities = 0, denormals = 0;
    for (const auto& block : blocks) {
        stats.Add(block.data(), static_cast<int>(block.size()));
        for (float v : block) {
            ++samples;
            if (std::isnan(v)) { ++nans; continue; }
            if (std::isinf(v)) { ++infinities; continue; }
            denormals += std::fpclassify(v) == FP_SUBNORMAL ? 1 : 0;
            peak = std::max(peak, static_cast<double>(std::fabs(v)));
            squares += static_cast<double>(v) * v;
        }
    }
    EXPECT_EQ(stats.samples, samples);
    EXPECT_EQ(stats.nans, nans);
    EXPECT_EQ(stats.infinities, infinities);
    EXPECT_EQ(stats.denormals, denormals);
    EXPECT_DOUBLE_EQ(stats.peak, peak);
    EXPECT_NEAR(stats.sumSquares, squares, 1e-9 * squares);
}
