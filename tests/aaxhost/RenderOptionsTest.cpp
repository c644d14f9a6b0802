// Command-line values aaxhost refuses before rendering anything. Where the
// events of a good file land is checked end to end (vst3e2e.*).
#include <gtest/gtest.h>

#include "MidiSchedule.h"
#include "RenderConfig.h"

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
