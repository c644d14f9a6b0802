// The real-time path through CFakeHostVST3::Process with our test plug-ins:
// the MIDI corner cases, host changes and restarts a file-driven render
// cannot produce.
#include <cstdio>
#include <memory>
#include <thread>

#include "AAX_CLinearTaperDelegate.h"
#include "AAX_CNumberDisplayDelegate.h"
#include "AAX_CParameter.h"
#include "AAX_CString.h"
#include "Vst3TestSupport.h"

using namespace vst3test;
using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

// What a plug-in can read of a note event, field by field.
std::string NoteFields(const Event& e)
{
    char text[200];
    if (e.type == Event::kNoteOnEvent)
        std::snprintf(text, sizeof(text), "on bus=%d at=%d ppq=%g flags=%d ch=%d pitch=%d tuning=%g vel=%.9g len=%d id=%d",
                      e.busIndex, e.sampleOffset, e.ppqPosition, e.flags, e.noteOn.channel, e.noteOn.pitch,
                      e.noteOn.tuning, e.noteOn.velocity, e.noteOn.length, e.noteOn.noteId);
    else
        std::snprintf(text, sizeof(text), "type=%d bus=%d at=%d ppq=%g flags=%d ch=%d pitch=%d vel=%.9g id=%d tuning=%g",
                      e.type, e.busIndex, e.sampleOffset, e.ppqPosition, e.flags, e.noteOff.channel,
                      e.noteOff.pitch, e.noteOff.velocity, e.noteOff.noteId, e.noteOff.tuning);
    return text;
}

}  // namespace

// Without MIDI debug lines, notes take a short way into the event list; the
// plug-in must read the same events as on the way that logs them.
TEST(Vst3Process, NotesReadTheSameWhetherOrNotMidiIsLogged)
{
    auto play = [](bool logged) {
        std::unique_ptr<CLogCapture> log;
        if (logged)
            log = std::make_unique<CLogCapture>();
        CHostedPlugin plugin("MrvTestSynth");
        CTestContext buffers(128);
        buffers.mMidiIn.Add(9, 0x93, 64, 0, true);     // immediate note-on at velocity 0
        buffers.mMidiIn.Add(10, 0x80, 0xC8, 64);       // note-off, a pitch byte above 127 as given
        buffers.mMidiIn.Add(11, 0xB0, 7, 64);          // a controller between the notes
        buffers.mMidiIn.Add(12, 0x9F, 127, 127, true);
        buffers.mMidiIn.Add(127, 0x8F, 1, 0, true);
        plugin.mHost->Process(buffers.Block());
        // The list is emptied after the call; its records are still there.
        const Event* records = plugin.Loader().getInputEvents()->freeBegin();
        std::vector<std::string> notes;
        for (int i = 0; i < 4; ++i)
            notes.push_back(NoteFields(records[i]));
        return notes;
    };
    const std::vector<std::string> shortWay = play(false);
    EXPECT_EQ(shortWay, play(true));
    EXPECT_EQ(shortWay[0], "on bus=0 at=9 ppq=0 flags=1 ch=3 pitch=64 tuning=0 vel=0 len=0 id=-1");
    EXPECT_EQ(shortWay[1], "type=1 bus=0 at=10 ppq=0 flags=0 ch=0 pitch=200 vel=0.503937006 id=-1 tuning=0");
    EXPECT_EQ(shortWay[3], "type=1 bus=0 at=127 ppq=0 flags=1 ch=15 pitch=1 vel=0 id=-1 tuning=0");
}

TEST(Vst3Process, ImmediateMaskedAndSystemMessages)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    CTestContext buffers(128);
    buffers.mMidiIn.Add(9, 0x93, 64, 0, true);  // immediate: live flag
    buffers.mMidiIn.Add(21, 0xA1, 0xC5, 0xFF);  // poly pressure data are masked
    buffers.mMidiIn.Add(22, 0xF8, 0, 0);        // clock: ignored
    buffers.mMidiIn.Add(23, 0xD2, 0xFF, 0);     // after-touch, masked to 127
    buffers.mMidiIn.Add(24, 0xE6, 0x01, 0x00);  // smallest bend step
    buffers.mMidiIn.Add(25, 0xB0, 1, 10);       // unmapped controller
    plugin.mHost->Process(buffers.Block());

    EXPECT_EQ(trace.LinesStartingWith("proc.noteOn"),
              std::vector<std::string>{"proc.noteOn ch=3 pitch=64 vel=0.000000 offset=9 flags=1 id=-1"});
    EXPECT_EQ(trace.LinesStartingWith("proc.polyPressure"),
              std::vector<std::string>{"proc.polyPressure ch=1 pitch=69 pressure=1.000000 offset=21"});
    EXPECT_EQ(trace.LinesStartingWith("proc.process samples=128 events=2").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=1 value=1.000000 offset=23").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=2 value=0.000061 offset=24").size(), 1u);  // 1 / 16383
    EXPECT_EQ(trace.LinesStartingWith("proc.param").size(), 2u);  // nothing for the unmapped controller
}

TEST(Vst3Process, EffectWithoutEventBusDropsMidiAndProcessesAudio)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestEffect");
    EXPECT_EQ(plugin.Loader().getInputEvents(), nullptr);
    EXPECT_EQ(plugin.Loader().getMainBusMask(kInput), 1u);
    EXPECT_EQ(plugin.Loader().getMidiControllerTable(), nullptr);  // no IMidiMapping
    CTestContext buffers(64);
    for (int c = 0; c < 2; ++c)
        for (auto& s : buffers.Input(c))
            s = 0.5f;
    buffers.mMidiIn.Add(0, 0x90, 60, 100);
    buffers.mMidiIn.Add(1, 0xA0, 60, 100);
    buffers.mMidiIn.Add(2, 0xB0, 7, 100);
    plugin.mHost->AddInputChangeForProcessing(0, 0.5);
    plugin.mHost->Process(buffers.Block());
    EXPECT_EQ(trace.LinesStartingWith("effect.process samples=64 events=none").size(), 1u);
    EXPECT_FLOAT_EQ(buffers.Output(0)[10], 0.25f);
    EXPECT_FLOAT_EQ(buffers.Output(1)[63], 0.25f);
}

TEST(Vst3Process, HostChangesReachProcessorOnceAndOutputChangesReachController)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    plugin.mHost->AddInputChangeForGUI(0, 0.3);
    plugin.mHost->AddInputChangeForProcessing(0, 0.3);
    plugin.mHost->AddInputChangeForProcessing(-1, 0.5);  // out of range: guarded
    plugin.mHost->AddInputChangeForGUI(-1, 0.5);
    EXPECT_EQ(trace.LinesStartingWith("ctrl.setParamNormalized id=0 value=0.300000").size(), 1u);
    CTestContext buffers(64);
    buffers.mMidiIn.Add(0, 0x90, 69, 127);  // the synth reports its peak as an output change
    plugin.mHost->Process(buffers.Block());
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=0 value=0.300000 offset=0").size(), 1u);
    buffers.mMidiIn.mPackets.clear();
    plugin.mHost->Process(buffers.Block());
    EXPECT_EQ(trace.LinesStartingWith("proc.param").size(), 1u);
    // The background timer delivers within a few ticks.
    for (int i = 0; i < 100 && trace.LinesStartingWith("ctrl.setParamNormalized id=5").empty(); ++i)
        usleep(10000);
    EXPECT_FALSE(trace.LinesStartingWith("ctrl.setParamNormalized id=5").empty());
}

TEST(Vst3Process, RestartComponentFlags)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    CVST3Loader& loader = plugin.Loader();
    EXPECT_EQ(loader.restartComponent(kLatencyChanged), kResultOk);
    EXPECT_EQ(loader.restartComponent(kIoTitlesChanged), kResultFalse);  // unsupported
    EXPECT_EQ(trace.LinesStartingWith("proc.activateBus").size(), 2u);   // neither touches the buses

    // An I/O change re-runs the bus set-up.
    EXPECT_EQ(loader.restartComponent(kIoChanged), kResultOk);
    EXPECT_EQ(trace.LinesStartingWith("proc.activateBus").size(), 4u);
    ASSERT_NE(loader.getInputEvents(), nullptr);

    // The plug-in moves volume from CC 7 to CC 11 and asks for a restart.
    NotifyController(loader, "TestRestart", {{"flags", kMidiCCAssignmentChanged}});
    EXPECT_EQ(trace.LinesStartingWith("ctrl.restart flags=32 result=0").size(), 1u);
    const auto* table = loader.getMidiControllerTable();
    for (int channel = 0; channel < 16; ++channel) {
        EXPECT_EQ((*table)[channel][7], -1);
        EXPECT_EQ((*table)[channel][11], 0);
    }
    CTestContext buffers(64);
    buffers.mMidiIn.Add(0, 0xB0, 11, 127);
    plugin.mHost->Process(buffers.Block());
    EXPECT_EQ(trace.LinesStartingWith("proc.param id=0 value=1.000000 offset=0").size(), 1u);
}

TEST(Vst3Standard, ValuesThePlugInChangedItselfAreReadBackIntoTheAaxParameters)
{
    // The front end's AAX parameter for the volume, as EffectInit makes it.
    struct COwnerWithVolume : CTestOwner {
        COwnerWithVolume()
        {
            mParameterManager.AddParameter(new AAX_CParameter<float>(
                "0", AAX_CString("Volume"), 0.8f, AAX_CLinearTaperDelegate<float, 0>(0.0f, 1.0f),
                AAX_CNumberDisplayDelegate<float, 2, 0>(), true));
        }
    } owner;
    CTrace trace;
    std::string path = BundlePath("MrvTestSynth");
    CFakeHostVST3 host(owner, path, EHostMode::kStandard);
    host.SetEditListener(&owner);
    ASSERT_TRUE(host.Init());
    host.Setup();
    EXPECT_EQ(trace.LinesStartingWith("proc.setActive 1").size(), 1u);

    CVST3Loader& loader = *host.GetLoader();
    loader.getController()->setParamNormalized(0, 0.3);  // as a preset load inside the plug-in would
    EXPECT_EQ(loader.restartComponent(kParamValuesChanged), kResultOk);
    ASSERT_EQ(owner.mSetValues.size(), 1u);
    EXPECT_EQ(owner.mSetValues[0].first, "0");
    EXPECT_DOUBLE_EQ(owner.mSetValues[0].second, 0.3);
    host.Quit();
}

TEST(Vst3Standard, ARateChangeIsAppliedOnTheMainThreadWithTheComponentSwitchedOff)
{
    CTestOwner owner;
    CTrace trace;
    std::string path = BundlePath("MrvTestSynth");
    CFakeHostVST3 host(owner, path, EHostMode::kStandard);
    ASSERT_TRUE(host.Init());
    host.Setup();  // no AAX controller: 44.1 kHz
    CTestContext buffers(64, 96000.0f);
    trace.Clear();
    std::thread audio([&] { host.Process(buffers.Block()); });
    audio.join();
    // The audio thread only processed (switching processing on, as the first
    // buffer does) and noted the new rate.
    EXPECT_TRUE(trace.LinesStartingWith("proc.setupProcessing").empty());
    EXPECT_TRUE(trace.LinesStartingWith("proc.setActive").empty());

    host.ApplyPendingSettings();
    const auto lines = trace.Lines();
    std::vector<std::string> setup;
    for (const std::string& line : lines)
        if (line.rfind("proc.setActive", 0) == 0 || line.rfind("proc.setupProcessing", 0) == 0 ||
            line.rfind("proc.setProcessing", 0) == 0)
            setup.push_back(line);
    EXPECT_EQ(setup, (std::vector<std::string>{"proc.setProcessing 1", "proc.setProcessing 0", "proc.setActive 0",
                                               "proc.setupProcessing mode=0 size=0 max=4096 rate=96000.0",
                                               "proc.setActive 1"}));
    host.Quit();
}
