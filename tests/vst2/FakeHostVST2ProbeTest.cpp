// The VST 2 fake host driven against the probe plug-in, which records what it
// is sent and calls back into the host on demand.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>

#include "ThreadRole.h"
#include "Vst2TestSupport.h"

using namespace Vst2Test;

namespace {

class ProbeHost : public testing::Test {
protected:
    void SetUp() override
    {
        hosted = std::make_unique<HostedPlugin>(BuiltPlugin("vst2probe.so"));
        ASSERT_NE(hosted->host->GetEffect(), nullptr);
    }
    void TearDown() override { hosted.reset(); }

    CFakeHostVST2& Host() { return *hosted->host; }
    // Dispatcher lines only, without the editor idle ticks.
    std::vector<std::string> Dispatches() const
    {
        std::vector<std::string> out;
        for (const std::string& line : record.LinesStartingWith("dispatch "))
            if (line.find("effEditIdle") == std::string::npos)
                out.push_back(line);
        return out;
    }

    CProbeRecord record;
    std::unique_ptr<HostedPlugin> hosted;
};

}  // namespace

TEST_F(ProbeHost, CreationAndInitSendTheExpectedSequence)
{
    const auto lines = record.Lines();
    ASSERT_GE(lines.size(), 2u);
    EXPECT_EQ(lines[0], "entry VSTPluginMain");
    // Inside the entry function only the three self-answered opcodes work.
    EXPECT_EQ(lines[1], "entry-host version=2400 time=0 vendor=1:Morvane AAX Wrapper idle=1 canDo=0 rate=0");
    EXPECT_EQ(Dispatches(), (std::vector<std::string>{
                                "dispatch effOpen index=0 value=0 opt=0",
                                "dispatch effMainsChanged index=0 value=1 opt=0",
                                "dispatch effSetProgram index=0 value=0 opt=0",
                            }));

    record.Clear();
    hosted.reset();
    EXPECT_EQ(record.Lines(), (std::vector<std::string>{
                                  "dispatch effEditClose index=0 value=0 opt=0",
                                  "dispatch effMainsChanged index=0 value=0 opt=0",
                                  "dispatch effClose index=0 value=0 opt=0",
                              }));
}

TEST_F(ProbeHost, ParameterChangesReachTheEffectAtOnceAndAreTheReportedDefault)
{
    EXPECT_EQ(Host().GetPluginVersion(), "V1.2.3.4");
    EXPECT_EQ(Host().GetPluginProductUniqueID(), 0x56507262);
    Host().AddInputChangeForGUI(1, 0.9);  // carries nothing for VST 2
    Host().AddInputChangeForProcessing(1, 0.3);
    EXPECT_EQ(record.LinesStartingWith("setParameter"), std::vector<std::string>{"setParameter 1 0.3"});
    // The "default" is the value at the time of asking.
    const SParameterInfo info = Host().GetParameterInfo(1);
    EXPECT_TRUE(info.valid && info.defaultIsPresentValue);
    EXPECT_FLOAT_EQ(static_cast<float>(info.defaultValue), 0.3f);
}

TEST_F(ProbeHost, SampleRateChangesSuspendSetAndResumeBeforeProcessing)
{
    CTestContext ctx(32, 48000.0f);
    record.Clear();
    Host().Process(ctx.Block());
    Host().Process(ctx.Block());
    ctx.mSampleRate = 44100.0f;
    Host().Process(ctx.Block());

    std::vector<std::string> seen;
    for (const std::string& line : record.Lines())
        if (line.rfind("dispatch", 0) == 0 || line.rfind("process", 0) == 0)
            seen.push_back(line);
    EXPECT_EQ(seen, (std::vector<std::string>{
                        "dispatch effMainsChanged index=0 value=0 opt=0",
                        "dispatch effSetSampleRate index=0 value=0 opt=48000",
                        "dispatch effMainsChanged index=0 value=1 opt=0",
                        "process frames=32 inputs=set outputs=set",
                        "process frames=32 inputs=set outputs=set",
                        "dispatch effMainsChanged index=0 value=0 opt=0",
                        "dispatch effSetSampleRate index=0 value=0 opt=44100",
                        "dispatch effMainsChanged index=0 value=1 opt=0",
                        "process frames=32 inputs=set outputs=set",
                    }));
}

TEST_F(ProbeHost, StoppedTransportKeepsTempoMeterAndPosition)
{
    CTestContext ctx(16, 48000.0f);
    ctx.mTransport.mTempo = 96.5;
    ctx.mTransport.mNumerator = 7;
    ctx.mTransport.mDenominator = 8;
    ctx.mTransport.mTicks = 2 * 960000 + 480000;
    ctx.mTransport.mSamplePosition = 123456;
    ctx.mTransport.mPlaying = false;
    Host().Process(ctx.Block());
    EXPECT_EQ(record.LinesStartingWith("time "),
              std::vector<std::string>{"time samplePos=123456 sampleRate=48000 ppqPos=2.500000 tempo=96.500 sig=7/8 "
                                       "flags=0x2600 barStartPos=0 nanoSeconds=0"});
}

TEST_F(ProbeHost, EachMidiPacketIsOneEventCallWithTheSpecifiedFields)
{
    CTestContext ctx(64);
    ctx.mMidiIn.mPackets = {MidiPacket(5, {0x90, 60, 127}), MidiPacket(7, {0x80, 60, 64}, true),
                            MidiPacket(11, {0xC0, 5})};
    record.Clear();
    Host().Process(ctx.Block());

    std::vector<std::string> seen;
    for (const std::string& line : record.Lines())
        if (line.rfind("events", 0) == 0 || line.rfind("event ", 0) == 0 || line.rfind("process", 0) == 0)
            seen.push_back(line);
    EXPECT_EQ(seen, (std::vector<std::string>{
                        "events num=1",
                        "event type=1 byteSize=3 deltaFrames=5 flags=0 noteLength=0 noteOffset=60 "
                        "data=90 3c 7f 00 detune=0 noteOffVelocity=1",
                        "events num=1",
                        "event type=1 byteSize=3 deltaFrames=7 flags=1 noteLength=0 noteOffset=60 "
                        "data=80 3c 40 00 detune=0 noteOffVelocity=0",
                        // The real-time flag, once set, stays on the reused record.
                        "events num=1",
                        "event type=1 byteSize=2 deltaFrames=11 flags=1 noteLength=0 noteOffset=5 "
                        "data=c0 05 00 00 detune=0 noteOffVelocity=0",
                        "process frames=64 inputs=set outputs=set",
                    }));
}

TEST_F(ProbeHost, HostCallbackAnswersAndOutputEventsNeedAContextAndEvents)
{
    AEffect* effect = Host().GetEffect();
    VstMidiEvent event{};
    event.type = kVstMidiType;
    event.byteSize = 3;
    event.midiData[0] = static_cast<char>(0x90);
    VstEvents events{};
    events.numEvents = 1;
    events.events[0] = reinterpret_cast<VstEvent*>(&event);
    // No processing call yet: no time, nowhere to post.
    EXPECT_EQ(CFakeHostVST2::staticHostCallback(effect, audioMasterProcessEvents, 0, 0, &events, 0), 0);
    EXPECT_EQ(CFakeHostVST2::staticHostCallback(nullptr, audioMasterGetTime, 0, 0, nullptr, 0), 0);

    CTestContext ctx(8, 44100.0f);
    Host().Process(ctx.Block());
    const VstIntPtr time = CFakeHostVST2::staticHostCallback(effect, audioMasterGetTime, 0, 0, nullptr, 0);
    ASSERT_NE(time, 0);
    EXPECT_EQ(reinterpret_cast<const VstTimeInfo*>(time)->sampleRate, 44100.0);
    // The rate is answered by address, deliberately: see the callback.
    const VstIntPtr rate = CFakeHostVST2::staticHostCallback(effect, audioMasterGetSampleRate, 0, 0, nullptr, 0);
    EXPECT_EQ(rate, reinterpret_cast<VstIntPtr>(&reinterpret_cast<const VstTimeInfo*>(time)->sampleRate));
    for (VstInt32 opcode : {VstInt32{audioMasterCanDo}, VstInt32{audioMasterGetBlockSize}, VstInt32{9999}})
        EXPECT_EQ(CFakeHostVST2::staticHostCallback(effect, opcode, 0, 0, nullptr, 0), 0) << opcode;

    EXPECT_EQ(CFakeHostVST2::staticHostCallback(effect, audioMasterProcessEvents, 0, 0, nullptr, 0), 0);
    events.numEvents = 0;
    EXPECT_EQ(CFakeHostVST2::staticHostCallback(effect, audioMasterProcessEvents, 0, 0, &events, 0), 0);
    EXPECT_TRUE(ctx.mMidiOut.mPosted.empty());
    // Outside processing, the last context's output node is used.
    events.numEvents = 1;
    event.byteSize = 32;
    EXPECT_EQ(CFakeHostVST2::staticHostCallback(effect, audioMasterProcessEvents, 0, 0, &events, 0), 0);
    ASSERT_EQ(ctx.mMidiOut.mPosted.size(), 1u);
    EXPECT_EQ(ctx.mMidiOut.mPosted[0].mLength, 32u);
    EXPECT_EQ(ctx.mMidiOut.mPosted[0].mData[0], 0x90);
}

TEST_F(ProbeHost, SizeWindowRequestsResizeTheOpenViewOnly)
{
    CTestContext ctx(16);
    ctx.mMidiIn.mPackets = {MidiPacket(0, {0xB0, 24, 10})};
    Host().Process(ctx.Block());  // no view open: answered, nothing resized
    CTestViewContainer view;
    Host().CreateGUI(&view);
    ctx.mMidiIn.mPackets = {MidiPacket(0, {0xB0, 24, 20}), MidiPacket(1, {0xB0, 25, 30})};
    Host().Process(ctx.Block());

    EXPECT_EQ(record.LinesStartingWith("sizeWindow"), (std::vector<std::string>{
                                                          "sizeWindow 210 110 -> 1",
                                                          "sizeWindow 220 120 -> 1",
                                                          "sizeWindow 0 130 -> 1",
                                                      }));
    ASSERT_EQ(view.mSizes.size(), 1u);
    EXPECT_EQ(view.mSizes[0].horz, 220.0f);
    EXPECT_EQ(view.mSizes[0].vert, 120.0f);
}

// Restores into fresh instances are covered by the aaxhost state round trips.
TEST_F(ProbeHost, StateCarriesTheChunkWithAZeroedMarginAtAnySizeAndRefusesLessThanTheMargin)
{
    std::vector<unsigned char> shortBytes(100, 0);
    for (uint32_t size : {59u, 0u, static_cast<uint32_t>(CFakeHostVST2::kStateMargin)})
        EXPECT_FALSE(Host().SetState(shortBytes.data(), size)) << size;
    EXPECT_FALSE(Host().SetState(nullptr, 80));
    EXPECT_TRUE(record.LinesStartingWith("setChunk").empty());

    SPluginState state = Host().GetState();
    EXPECT_TRUE(state.gave);
    ASSERT_EQ(state.bytes.size(), 20u + CFakeHostVST2::kStateMargin);
    EXPECT_EQ(std::string(state.bytes.begin(), state.bytes.begin() + 4), "VPRB");
    // The margin is zeroed, so a saved chunk never carries stale host memory.
    EXPECT_TRUE(std::all_of(state.bytes.begin() + 20, state.bytes.end(), [](char b) { return b == 0; }));

    const CScopedEnv pad("VST2PROBE_CHUNK_PAD", "100000");  // read by the probe's getChunk only
    state = Host().GetState();
    ASSERT_EQ(state.bytes.size(), 100020u + CFakeHostVST2::kStateMargin);
    EXPECT_EQ(static_cast<unsigned char>(state.bytes[100019]), static_cast<unsigned char>(100019 & 0xFF));
    EXPECT_TRUE(Host().SetState(state.bytes.data(), static_cast<uint32_t>(state.bytes.size())));
    EXPECT_EQ(record.LinesStartingWith("setChunk").size(), 1u);
    EXPECT_NE(record.LinesStartingWith("setChunk")[0].find("size=100020 "), std::string::npos);
}

TEST(FakeHostVST2SelfChecks, RunOnlyWithTheBundleCategoryAtDebug)
{
    CProbeRecord record;
    {
        // The checks' own verdicts; the record layout is a static assertion.
        CLogCapture log({"bundle", "init"});
        HostedPlugin hosted(BuiltPlugin("vst2probe.so"));
        EXPECT_TRUE(log.Contains("Iterate Program OK"));
        EXPECT_EQ(log.Count("HOST> Process Replacing..."), 5u);
        EXPECT_TRUE(log.Contains("Can-Do OK"));
        EXPECT_TRUE(log.Contains("HOST> Done..."));
    }
    EXPECT_EQ(record.LinesStartingWith("process frames=512").size(), 5u);

    record.Clear();
    {
        HostedPlugin hosted(BuiltPlugin("vst2probe.so"));
    }
    EXPECT_TRUE(record.LinesStartingWith("process").empty());
}

#if MORVANE_THREAD_CHECKS
// A main-thread operation reached from inside the audio callback stops the
// process with both places named; a call the design puts on the audio thread
// does not.
TEST_F(ProbeHost, MainThreadCallsFromTheAudioThreadAreStopped)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(
        {
            MV_REAL_TIME("the audio callback");
            Host().GetState();
        },
        "thread-role violation: main-thread call \"IFakeHost::GetState\" made inside \"the audio callback\"");
    EXPECT_DEATH(
        {
            MV_MAIN_THREAD("a state restore");
            CTestContext ctx(32);
            Host().Process(ctx.Block());
        },
        "thread-role violation: real-time call \"IFakeHost::Process\" made inside \"a state restore\"");
    MV_REAL_TIME("the audio callback");
    MV_AUDIO_THREAD_BY_DESIGN("automation from the plug-in's process call");
    Host().AddInputChangeForProcessing(0, 0.25);
    EXPECT_EQ(record.LinesStartingWith("setParameter 0 0.25").size(), 1u);
}
#endif
