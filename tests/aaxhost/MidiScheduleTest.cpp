// Event placement decides whether a wrapped render can match a direct one:
// every event must land in exactly one buffer at the right offset.
#include <gtest/gtest.h>

#include "MidiSchedule.h"
#include "RenderConfig.h"
#include "TestSupport.h"

using namespace AAXHost;

TEST(MidiSchedule, BlocksCoverTheRenderExactlyOnce)
{
    const auto blocks = PlanBlocks(1000, 256);
    ASSERT_EQ(blocks.size(), 4u);
    EXPECT_EQ(blocks.back().start, 768);
    EXPECT_EQ(blocks.back().frames, 232);
    EXPECT_TRUE(PlanBlocks(0, 256).empty());
    EXPECT_TRUE(PlanBlocks(100, 0).empty());
}

TEST(MidiSchedule, PacketsCarryTheirOffsetInTheBlockAndKeepOrder)
{
    CMidiSchedule s;
    s.Add({511, 3, {0x90, 60, 100, 0}});
    s.Add({512, 3, {0x90, 62, 100, 0}});
    s.Add({0, 3, {0x90, 64, 100, 0}});
    s.Add({512, 3, {0x80, 62, 0, 0}});  // same time: after the note-on
    std::vector<AAX_CMidiPacket> p;
    s.PacketsForBlock(0, 512, p);
    ASSERT_EQ(p.size(), 2u);
    EXPECT_EQ(p[0].mTimestamp, 0u);
    EXPECT_EQ(p[1].mTimestamp, 511u);
    s.PacketsForBlock(512, 512, p);
    ASSERT_EQ(p.size(), 2u);
    EXPECT_EQ(p[0].mData[0], 0x90);
    EXPECT_EQ(p[1].mData[0], 0x80);
    EXPECT_EQ(p[0].mTimestamp, 0u);
    EXPECT_EQ(p[0].mLength, 3u);
}

TEST(MidiSchedule, SmfIsPlacedByTheFileTempoOrByTheGivenTempo)
{
    const std::string path = AAXHostTest::TempDir("midi") + "/beats.mid";
    AAXHostTest::WriteMidiFile(path, {{1.0, 1.0, 60, 100}}, {{0.5, {0xC0, 5}}});
    CMidiSchedule fileTempo, slower;
    std::string error;
    double tempo = 0;
    ASSERT_TRUE(fileTempo.LoadSmf(path, 48000, 0.0, error, &tempo)) << error;
    EXPECT_DOUBLE_EQ(tempo, 120.0);
    ASSERT_EQ(fileTempo.Events().size(), 3u);
    EXPECT_EQ(fileTempo.Events()[0].sample, 12000);  // program change at half a beat
    EXPECT_EQ(fileTempo.Events()[0].length, 2u);
    EXPECT_EQ(fileTempo.Events()[1].sample, 24000);
    ASSERT_TRUE(slower.LoadSmf(path, 48000, 60.0, error)) << error;
    EXPECT_EQ(slower.Events()[1].sample, 48000);
    EXPECT_EQ(slower.LastSample(), 96000);
    EXPECT_FALSE(slower.LoadSmf(path + ".missing", 48000, 0.0, error));
}

TEST(RenderOptions, ParameterSetsAndMetersAreValidated)
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
}
