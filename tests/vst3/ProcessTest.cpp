// The real-time path through CFakeHostVST3::Process with our test plug-ins:
// MIDI translation, transport, parameter hand-over and controller edits.
#include <cmath>
#include <cstdio>

#include "Vst3TestSupport.h"
#include "public.sdk/source/vst/hosting/hostclasses.h"

using namespace vst3test;
using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

// Sends a test hook message to the synth's controller.
void SendToController(CVST3Loader& loader, const char* id, std::initializer_list<std::pair<const char*, int64>> ints,
                      std::initializer_list<std::pair<const char*, double>> floats = {})
{
    IConnectionPoint* point = nullptr;
    ASSERT_EQ(loader.getController()->queryInterface(IConnectionPoint::iid, reinterpret_cast<void**>(&point)), kResultOk);
    auto* message = new HostMessage;
    message->setMessageID(id);
    for (const auto& i : ints)
        message->getAttributes()->setInt(i.first, i.second);
    for (const auto& f : floats)
        message->getAttributes()->setFloat(f.first, f.second);
    point->notify(message);
    message->release();
    point->release();
}

std::string Line(const char* format, double value)
{
    char text[128];
    std::snprintf(text, sizeof(text), format, value);
    return text;
}

}  // namespace

TEST(Vst3Process, NotesBecomeEventsWithTimestampsAndVelocities)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    CTestContext buffers(128);
    buffers.mMidiIn.Add(5, 0x90, 60, 127);
    buffers.mMidiIn.Add(9, 0x93, 64, 0, true);  // velocity 0 stays a note-on
    buffers.mMidiIn.Add(20, 0x80, 60, 64);
    buffers.mMidiIn.Add(21, 0xA1, 0xC5, 0xFF);  // poly pressure data are masked
    buffers.mMidiIn.Add(22, 0xF8, 0, 0);        // ignored
    plugin.mHost->Process(buffers.Context());

    const auto on = trace.LinesStartingWith("proc.noteOn");
    ASSERT_EQ(on.size(), 2u);
    EXPECT_EQ(on[0], "proc.noteOn ch=0 pitch=60 vel=1.000000 offset=5 flags=0 id=-1");
    EXPECT_EQ(on[1], "proc.noteOn ch=3 pitch=64 vel=0.000000 offset=9 flags=1 id=-1");
    const auto off = trace.LinesStartingWith("proc.noteOff");
    ASSERT_EQ(off.size(), 1u);
    EXPECT_EQ(off[0], Line("proc.noteOff ch=0 pitch=60 vel=%.6f offset=20", 64 * (1.0f / 127.0f)));
    EXPECT_EQ(trace.LinesStartingWith("proc.polyPressure")[0], "proc.polyPressure ch=1 pitch=69 pressure=1.000000 offset=21");
    EXPECT_EQ(trace.LinesStartingWith("proc.process samples=128 events=4").size(), 1u);

    // The event list is emptied after each buffer.
    buffers.mMidiIn.mPackets.clear();
    plugin.mHost->Process(buffers.Context());
    EXPECT_EQ(trace.LinesStartingWith("proc.process samples=128 events=0").size(), 1u);
}

TEST(Vst3Process, ControllersAfterTouchAndPitchBendBecomeParameterPoints)
{
    CTrace trace;
    CLogCapture log;
    CHostedPlugin plugin("MrvTestSynth");
    CTestContext buffers(64);
    buffers.mMidiIn.Add(3, 0xB0, 7, 127);    // volume
    buffers.mMidiIn.Add(4, 0xB0, 1, 10);     // unmapped
    buffers.mMidiIn.Add(6, 0xD2, 0xFF, 0);   // after-touch, masked to 127
    buffers.mMidiIn.Add(8, 0xE0, 0x00, 0x40);  // bend centre
    buffers.mMidiIn.Add(9, 0xE0, 0x7F, 0x7F);  // bend top, same queue
    plugin.mHost->Process(buffers.Context());

    EXPECT_EQ(trace.LinesStartingWith("proc.param id=0 value=1.000000 offset=3").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=1 value=1.000000 offset=6").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith(Line("proc.param id=2 value=%.6f offset=8", 8192.0 / 16383.0)).size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=2 value=1.000000 offset=9").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("proc.param").size(), 4u);
    EXPECT_TRUE(log.Contains("CHandleMidi::PushInputMidiEvents Param not define"));
    EXPECT_TRUE(log.Contains("CHandleMidi::PushInputMidiEvents kController AddPoint index 0 - value 1 timestamp 3"));
    // The controller hears the same values at once.
    EXPECT_EQ(trace.LinesStartingWith("ctrl.setParamNormalized id=0 value=1.000000").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("ctrl.setParamNormalized id=2 value=1.000000").size(), 1u);

    buffers.mMidiIn.mPackets.clear();
    buffers.mMidiIn.Add(0, 0xE5, 0x00, 0x00);  // bend bottom
    buffers.mMidiIn.Add(1, 0xE6, 0x01, 0x00);  // smallest step
    plugin.mHost->Process(buffers.Context());
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=2 value=0.000000 offset=0").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith(Line("proc.param id=2 value=%.6f offset=1", 1.0 / 16383.0)).size(), 1u);
}

TEST(Vst3Process, ProgramChangeScaledByStepCount)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    CTestContext buffers(64);
    buffers.mMidiIn.Add(2, 0xC0, 3, 0);
    buffers.mMidiIn.Add(3, 0xC4, 8, 0);  // beyond the 7 steps: ignored
    plugin.mHost->Process(buffers.Context());
    EXPECT_EQ(trace.LinesStartingWith(Line("proc.param id=3 value=%.6f offset=2", 3.0 / 7.0)).size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=3").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith(Line("ctrl.setParamNormalized id=3 value=%.6f", 3.0 / 7.0)).size(), 1u);

    buffers.mMidiIn.mPackets.clear();
    buffers.mMidiIn.Add(0, 0xC0, 7, 0);  // equal to the step count: 1.0
    plugin.mHost->Process(buffers.Context());
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=3 value=1.000000 offset=0").size(), 1u);
}

TEST(Vst3Process, TransportStoppedAndPlaying)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    CTestContext buffers(64);
    buffers.mTransport.mTempo = 98.5;
    buffers.mTransport.mNumerator = 7;
    buffers.mTransport.mDenominator = 8;
    buffers.mTransport.mTicks = 960000 * 3 + 480000;
    buffers.mTransport.mSamplePosition = 123456;
    plugin.mHost->Process(buffers.Context());
    buffers.mTransport.mPlaying = true;
    plugin.mHost->Process(buffers.Context());

    const auto contexts = trace.LinesStartingWith("proc.context");
    ASSERT_EQ(contexts.size(), 2u);
    EXPECT_EQ(contexts[0], "proc.context state=0x2600 rate=48000.0 tempo=98.500 sig=7/8 music=3.500000 samples=123456");
    EXPECT_EQ(contexts[1], "proc.context state=0x2602 rate=48000.0 tempo=98.500 sig=7/8 music=3.500000 samples=123456");
}

TEST(Vst3Process, SetProcessingOnceAndEmptyMidiStillProcesses)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    CTestContext buffers(64);
    buffers.mContext.mMidiIn = nullptr;
    for (int i = 0; i < 3; ++i)
        plugin.mHost->Process(buffers.Context());
    EXPECT_EQ(trace.LinesStartingWith("proc.setProcessing 1").size(), 1u);
    EXPECT_LT(trace.IndexOf("proc.setProcessing 1"), trace.IndexOf("proc.process"));
    EXPECT_EQ(trace.LinesStartingWith("proc.process samples=64 events=0").size(), 3u);
    EXPECT_TRUE(plugin.Loader().isProcessingStarted());
}

TEST(Vst3Process, NotesForAPluginWithoutEventBusAreDropped)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestEffect");
    CTestContext buffers(64);
    for (int c = 0; c < 2; ++c)
        for (auto& s : buffers.Input(c))
            s = 0.5f;
    buffers.mMidiIn.Add(0, 0x90, 60, 100);
    buffers.mMidiIn.Add(1, 0xA0, 60, 100);
    buffers.mMidiIn.Add(2, 0xB0, 7, 100);
    buffers.mMidiIn.Add(3, 0x80, 60, 0);
    plugin.mHost->AddInputChangeForProcessing(0, 0.5);
    plugin.mHost->Process(buffers.Context());
    EXPECT_EQ(trace.LinesStartingWith("effect.process samples=64 events=none").size(), 1u);
    EXPECT_FLOAT_EQ(buffers.Output(0)[10], 0.25f);
    EXPECT_FLOAT_EQ(buffers.Output(1)[63], 0.25f);
}

TEST(Vst3Process, HostChangesReachProcessorAtOffsetZeroAndControllerAtOnce)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    plugin.mHost->AddInputChangeForGUI(0, 0.3);
    plugin.mHost->AddInputChangeForProcessing(0, 0.3);
    EXPECT_EQ(trace.LinesStartingWith("ctrl.setParamNormalized id=0 value=0.300000").size(), 1u);
    CTestContext buffers(64);
    plugin.mHost->Process(buffers.Context());
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=0 value=0.300000 offset=0").size(), 1u);
    plugin.mHost->Process(buffers.Context());
    EXPECT_EQ(trace.LinesStartingWith("proc.param").size(), 1u);
    // Guarded: out of range does not reach anything.
    plugin.mHost->AddInputChangeForProcessing(-1, 0.5);
    plugin.mHost->AddInputChangeForGUI(-1, 0.5);
}

TEST(Vst3Process, EditorEditBecomesAaxGestureAndReachesProcessorAndController)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    CVST3Loader& loader = plugin.Loader();
    SendToController(loader, "TestEdit", {{"id", 2}}, {{"value", 0.75}});
    ASSERT_EQ(plugin.mOwner.mCalls.size(), 3u);
    EXPECT_EQ(plugin.mOwner.mCalls[0], "touch 2");
    EXPECT_EQ(plugin.mOwner.mCalls[1], "set 2 0.75");
    EXPECT_EQ(plugin.mOwner.mCalls[2], "release 2");

    // No audio yet: the value waits for the processor, and reaches the
    // controller on the next timer tick.
    EXPECT_EQ(trace.LinesStartingWith("proc.param").size(), 0u);
    // Whichever drains first (the timer thread or this tick), once only.
    {
        auto lock = loader.lockControllerAccess();
        loader.onTimer(loader.getTimer());
    }
    EXPECT_EQ(trace.LinesStartingWith("ctrl.setParamNormalized id=2 value=0.750000").size(), 1u);

    CTestContext buffers(64);
    plugin.mHost->Process(buffers.Context());
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=2 value=0.750000 offset=0").size(), 1u);
}

TEST(Vst3Process, OutputParameterChangesReachControllerOnTimerTick)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    CTestContext buffers(64);
    buffers.mMidiIn.Add(0, 0x90, 69, 127);
    plugin.mHost->Process(buffers.Context());
    // The background timer delivers within a few ticks.
    for (int i = 0; i < 100 && trace.LinesStartingWith("ctrl.setParamNormalized id=5").empty(); ++i)
        usleep(10000);
    EXPECT_EQ(trace.LinesStartingWith("ctrl.setParamNormalized id=5").size(), 1u);
}

TEST(Vst3Process, RestartComponentFlags)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    CVST3Loader& loader = plugin.Loader();
    EXPECT_EQ(loader.restartComponent(kParamValuesChanged), kResultOk);
    EXPECT_EQ(loader.restartComponent(kParamTitlesChanged), kResultOk);
    EXPECT_EQ(loader.restartComponent(kLatencyChanged), kResultOk);
    EXPECT_EQ(loader.restartComponent(kIoTitlesChanged), kResultFalse);
    EXPECT_EQ(loader.restartComponent(0), kResultFalse);
    EXPECT_EQ(trace.LinesStartingWith("proc.activateBus").size(), 2u);

    // An I/O change re-runs the bus set-up.
    EXPECT_EQ(loader.restartComponent(kIoChanged), kResultOk);
    EXPECT_EQ(trace.LinesStartingWith("proc.activateBus").size(), 4u);
    ASSERT_NE(loader.getInputEvents(), nullptr);

    // The plug-in moves volume from CC 7 to CC 11 and asks for a restart.
    SendToController(loader, "TestRestart", {{"flags", kMidiCCAssignmentChanged}});
    EXPECT_EQ(trace.LinesStartingWith("ctrl.restart flags=32 result=0").size(), 1u);
    const auto* table = loader.getMidiControllerTable();
    for (int channel = 0; channel < 16; ++channel) {
        EXPECT_EQ((*table)[channel][7], -1);
        EXPECT_EQ((*table)[channel][11], 0);
    }
    CTestContext buffers(64);
    buffers.mMidiIn.Add(0, 0xB0, 11, 127);
    plugin.mHost->Process(buffers.Context());
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=0 value=1.000000 offset=0").size(), 1u);
}
