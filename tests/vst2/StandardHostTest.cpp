// The VST 2 fake host in STANDARD mode against the probe plug-in: what a
// mainstream host sends and answers, one event list per buffer, slices for
// buffers past the announced block size, and rate changes that reach the
// plug-in on the main thread only.
#include <gtest/gtest.h>

#include <thread>

#if defined(__x86_64__)
#include <xmmintrin.h>
#endif

#include "CScopedEnv.h"
#include "Vst2TestSupport.h"

using namespace Vst2Test;

namespace {

class StandardProbe : public testing::Test {
protected:
    void SetUp() override
    {
        path = BuiltPlugin("vst2probe.so");
        host = std::make_unique<CFakeHostVST2>(owner, path, EHostMode::kStandard);
        // Nothing is created before Init: the effect is made at the host's rate.
        EXPECT_TRUE(record.Lines().empty());
        ASSERT_TRUE(host->Init());
    }
    void TearDown() override
    {
        host->Quit();
        host.reset();
    }
    std::vector<std::string> Dispatches(const char* except = "effEditIdle") const
    {
        std::vector<std::string> out;
        for (const std::string& line : record.LinesStartingWith("dispatch "))
            if (line.find(except) == std::string::npos)
                out.push_back(line);
        return out;
    }

    CProbeRecord record;
    CTestOwner owner;
    std::string path;
    std::unique_ptr<CFakeHostVST2> host;
};

}  // namespace

TEST_F(StandardProbe, OpensAtTheRateAndBlockSizeAndKeepsItsOwnProgram)
{
    const auto lines = record.Lines();
    ASSERT_GE(lines.size(), 2u);
    // Asked from inside the entry function, the host already answers: the
    // rate as a number, its capabilities, its time information.
    EXPECT_EQ(lines[1].rfind("entry-host version=2400 time=", 0), 0u) << lines[1];
    EXPECT_EQ(lines[1].find("time=0 "), std::string::npos) << lines[1];
    EXPECT_NE(lines[1].find(" vendor=1:Morvane AAX Wrapper idle=1 canDo=1 rate=44100"), std::string::npos) << lines[1];
    EXPECT_EQ(Dispatches(), (std::vector<std::string>{
                                "dispatch effOpen index=0 value=0 opt=0",
                                "dispatch effSetSampleRate index=0 value=0 opt=44100",
                                "dispatch effSetBlockSize index=0 value=4096 opt=0",
                                "dispatch effMainsChanged index=0 value=1 opt=0",
                            }));
}

// Bytes past a packet's length are left over from earlier use of the record,
// as a host may leave them; a length above 4 is corrupt.
TEST_F(StandardProbe, EveryEventOfABufferArrivesInOneListInTimeOrderWithOnlyItsPacketsBytes)
{
    CTestContext ctx(64, 44100.0f);
    AAX_CMidiPacket programChange = MidiPacket(20, {0xC0, 5});
    programChange.mData[2] = 0x7F;
    programChange.mData[3] = 0x33;
    AAX_CMidiPacket empty = MidiPacket(21, {});
    empty.mData[0] = 0x90;
    AAX_CMidiPacket corrupt = MidiPacket(22, {0x90, 60, 100, 0x11});
    corrupt.mLength = 9;
    ctx.mMidiIn.mPackets = {MidiPacket(9, {0x90, 60, 100}), programChange, MidiPacket(3, {0x90, 64, 90}), empty,
                            MidiPacket(3, {0x90, 67, 80}, true), corrupt};
    record.Clear();
    host->Process(ctx.Block());
    std::vector<std::string> seen;
    for (const std::string& line : record.Lines())
        if (line.rfind("events", 0) == 0 || line.rfind("event ", 0) == 0)
            seen.push_back(line.substr(0, line.find(" noteLength=")) + " " +
                           (line.find("data=") == std::string::npos ? "" : line.substr(line.find("data="), 16)));
    EXPECT_EQ(seen, (std::vector<std::string>{"events num=6 ",
                                              "event type=1 byteSize=32 deltaFrames=3 flags=0 data=90 40 5a 00",
                                              "event type=1 byteSize=32 deltaFrames=3 flags=1 data=90 43 50 00",
                                              "event type=1 byteSize=32 deltaFrames=9 flags=0 data=90 3c 64 00",
                                              "event type=1 byteSize=32 deltaFrames=20 flags=0 data=c0 05 00 00",
                                              "event type=1 byteSize=32 deltaFrames=21 flags=0 data=00 00 00 00",
                                              "event type=1 byteSize=32 deltaFrames=22 flags=0 data=90 3c 64 11"}));
}

// Each slice has its events and asks for the time of its own start.
TEST_F(StandardProbe, BuffersLongerThanTheBlockSizeArriveInSlicesWithTheirEventsAndTime)
{
    CTestContext ctx(10000, 44100.0f);
    ctx.mMidiIn.mPackets = {MidiPacket(5000, {0x90, 60, 100})};
    ctx.mTransport.mTempo = 120.0;
    ctx.mTransport.mSamplePosition = 44100;
    ctx.mTransport.mTicks = 2 * 960000;  // one second at 120 bpm
    record.Clear();
    host->Process(ctx.Block());
    EXPECT_EQ(record.LinesStartingWith("process "),
              (std::vector<std::string>{"process frames=4096 inputs=set outputs=set",
                                        "process frames=4096 inputs=set outputs=set",
                                        "process frames=1808 inputs=set outputs=set"}));
    std::vector<std::string> events = record.LinesStartingWith("event ");
    ASSERT_EQ(events.size(), 1u);
    EXPECT_NE(events[0].find("deltaFrames=904 "), std::string::npos) << events[0];  // 5000 - 4096
    std::vector<std::string> positions;
    for (const std::string& line : record.LinesStartingWith("time "))
        positions.push_back(line.substr(0, line.find(" tempo=")));
    // Slices start 4096 samples apart: 4096 / 44100 s at 2 quarters a second.
    EXPECT_EQ(positions, (std::vector<std::string>{"time samplePos=44100 sampleRate=44100 ppqPos=2.000000",
                                                   "time samplePos=48196 sampleRate=44100 ppqPos=2.185760",
                                                   "time samplePos=52292 sampleRate=44100 ppqPos=2.371519"}));
}

TEST_F(StandardProbe, ARateChangeReachesThePlugInOnTheMainThreadOnly)
{
    CTestContext ctx(64, 96000.0f);
    record.Clear();
    // The audio thread sees the new rate; it must not tell the plug-in itself.
    std::thread audio([&] { host->Process(ctx.Block()); });
    audio.join();
    EXPECT_TRUE(Dispatches("effProcessEvents").empty()) << record.Lines().front();

    host->ApplyPendingSettings();  // the main thread's periodic wake-up
    EXPECT_EQ(Dispatches(), (std::vector<std::string>{
                                "dispatch effMainsChanged index=0 value=0 opt=0",
                                "dispatch effSetSampleRate index=0 value=0 opt=96000",
                                "dispatch effSetBlockSize index=0 value=4096 opt=0",
                                "dispatch effMainsChanged index=0 value=1 opt=0",
                            }));
    record.Clear();
    host->Process(ctx.Block());
    host->ApplyPendingSettings();
    EXPECT_TRUE(Dispatches().empty());  // applied once
}

#if defined(__x86_64__)
// Flushing is the plug-in's condition, not the caller's: the AAX host's
// own mode is back when Process returns, whatever it was.
TEST_F(StandardProbe, TheCallersFloatingPointModeIsBackAfterProcess)
{
    CTestContext ctx(64, 44100.0f);
    const unsigned saved = _mm_getcsr();
    for (const unsigned mode : {saved & ~0x8040u, saved | 0x8000u}) {
        _mm_setcsr(mode);
        record.Clear();
        host->Process(ctx.Block());
        const unsigned after = _mm_getcsr();
        _mm_setcsr(saved);
        EXPECT_EQ(after, mode);
        EXPECT_EQ(record.LinesStartingWith("mode ftz=1 daz=1 ").size(), 1u);
    }
}
#endif

// Programs as one more parameter: an odd count (none, one, absurdly many)
// gives none, with a line for the absurd one; names that fill their 24
// bytes unterminated are read to their end, no further.
TEST(StandardProbePrograms, OddCountsGiveNoProgramAndUnterminatedNamesStopAtTheirRoom)
{
    CTestOwner owner;
    for (const char* count : {"0", "1", "100000"}) {
        CScopedEnv programs("VST2PROBE_PROGRAMS", count);
        // Not "bundle": its diagnostic dump would list every one of 100000
        // programs, faster than the log's writer drains them.
        CLogCapture log({"fakehost"});
        CFakeHostVST2 host(owner, BuiltPlugin("vst2probe.so"), EHostMode::kStandard);
        ASSERT_TRUE(host.Init());
        EXPECT_EQ(host.GetParameterCount(), 4) << count;
        EXPECT_EQ(log.Contains("programs; no program parameter"), std::string(count) == "100000") << count;
        host.Quit();
    }
    CScopedEnv programs("VST2PROBE_PROGRAMS", "3");
    CFakeHostVST2 host(owner, BuiltPlugin("vst2probe.so"), EHostMode::kStandard);
    ASSERT_TRUE(host.Init());
    ASSERT_EQ(host.GetParameterCount(), 5);
    const SParameterInfo program = host.GetParameterInfo(4);
    EXPECT_TRUE(program.program);
    EXPECT_EQ(program.name, "Program");
    EXPECT_EQ(program.steps, 2);
    EXPECT_EQ(host.GetParameterText(4, 0.0), std::optional<std::string>("Probe A"));
    EXPECT_EQ(host.GetParameterText(4, 1.0), std::optional<std::string>(std::string(24, 'N')));
    // Set by name, it reaches the plug-in as its program.
    const std::optional<double> second = host.GetParameterValueFromText(4, "Probe B");
    ASSERT_TRUE(second);
    EXPECT_DOUBLE_EQ(*second, 0.5);
    host.AddInputChangeForProcessing(4, *second);
    EXPECT_EQ(host.GetParameterValue(4), std::optional<double>(0.5));
    host.Quit();
}
