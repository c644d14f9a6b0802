// Loading, class choice, set-up and tear-down against our test bundles,
// including the ones that are broken on purpose.
#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>

#include "Vst3TestSupport.h"

using namespace vst3test;
using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

void ExpectOrdered(const CTrace& trace, const std::vector<std::string>& prefixes)
{
    int previous = -1;
    for (const auto& prefix : prefixes) {
        const int index = trace.IndexOf(prefix);
        EXPECT_GT(index, previous) << prefix << " missing or out of order";
        previous = std::max(previous, index);
    }
}

// The neutral answers of a fake host without a plug-in.
void ExpectNeutral(CFakeHostVST3& host, bool hasFactory)
{
    EXPECT_EQ(host.GetParameterCount(), -1);
    EXPECT_FALSE(host.GetParameterInfo(0).valid);
    if (!hasFactory) {
        EXPECT_EQ(host.GetPluginVendor(), "");
        EXPECT_EQ(host.GetPluginVersion(), "");
    }
    EXPECT_EQ(host.GetPluginProductUniqueID(), 0);
    EXPECT_EQ(host.TimerWakeup(), 0);
    const SPluginState state = host.GetState();
    EXPECT_FALSE(state.gave);
    EXPECT_EQ(state.bytes.size(), 60u);
    unsigned char block[8] = {1, 0, 0, 0, 0, 0, 0, 0};
    EXPECT_FALSE(host.SetState(block, sizeof(block)));
    host.Setup();
    host.AddInputChangeForGUI(0, 0.5);
    host.AddInputChangeForProcessing(0, 0.5);
    CTestContext buffers(64);
    host.Process(buffers.Block());
    EXPECT_FALSE(host.GetViewSize().known);
    CTestViewContainer container;
    host.CreateGUI(&container);
    host.QuitGUI();
}

}  // namespace

TEST(Vst3Loading, InstrumentIsCreatedConnectedAndDescribed)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    ASSERT_NE(plugin.mHost->GetLoader(), nullptr);
    CFakeHostVST3& host = *plugin.mHost;

    EXPECT_STREQ(host.GetClassInfo().category, "Audio Module Class");
    EXPECT_EQ(host.GetPluginVendor(), "Morvane Test");
    EXPECT_EQ(host.GetPluginVersion(), "1.2.3");

    ExpectOrdered(trace, {"ModuleEntry", "proc.initialize", "ctrl.initialize", "ctrl.setComponentHandler set",
                          "proc.connect", "ctrl.connect", "proc.getState", "ctrl.setComponentState",
                          "proc.activateBus type=0 dir=1 index=0 state=1",
                          "proc.setupProcessing mode=0 size=0 max=256 rate=44100.0"});
    // The default-active auxiliary output is switched off, the main one on.
    EXPECT_EQ(trace.LinesStartingWith("proc.activateBus type=0 dir=1 index=1 state=0").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("proc.initialize").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("proc.setActive 1").size(), 0u);

    CVST3Loader& loader = plugin.Loader();
    EXPECT_TRUE(loader.areConnected());
    EXPECT_EQ(loader.getMainBusMask(kOutput), 1u);
    EXPECT_EQ(loader.getMainBusMask(kInput), 0u);
    ASSERT_NE(loader.getInputEvents(), nullptr);

    // Parameters: hidden and read-only ones are reported but not automatable.
    ASSERT_EQ(host.GetParameterCount(), 6);
    const struct { const char* name; float def; bool editable; } expected[] = {
        {"Volume", 0.8f, true}, {"Pressure", 0.0f, true}, {"Bend", 0.5f, true},
        {"Program", 0.0f, true}, {"Hidden", 0.25f, false}, {"Peak", 0.0f, false}};
    for (int i = 0; i < 6; ++i) {
        const SParameterInfo info = host.GetParameterInfo(i);
        EXPECT_EQ(info.automatable, expected[i].editable) << i;
        EXPECT_EQ(info.name, expected[i].name);
        EXPECT_FLOAT_EQ(static_cast<float>(info.defaultValue), expected[i].def);
    }
    // Program changes go to the unit's program parameter on every channel.
    for (int channel = 0; channel < 16; ++channel)
        EXPECT_EQ(loader.getProgramChangeParameter(channel), 3);

    // The 16 x 130 controller table.
    const CVST3Loader::MidiControllerTable* table = loader.getMidiControllerTable();
    ASSERT_NE(table, nullptr);
    for (int channel = 0; channel < 16; ++channel) {
        for (int cc = 0; cc < 130; ++cc) {
            const int32 expectedId = cc == 7 ? 0 : cc == 128 ? 1 : cc == 129 ? 2 : -1;
            ASSERT_EQ((*table)[channel][cc], expectedId) << channel << "/" << cc;
        }
    }
}

TEST(Vst3Loading, TearDownReleasesInOrder)
{
    CTrace trace;
    {
        CHostedPlugin plugin("MrvTestSynth");
        CTestContext buffers(32);
        plugin.mHost->Process(buffers.Block());
        trace.Clear();
        plugin.mHost->Quit();
        EXPECT_EQ(plugin.mHost->GetLoader(), nullptr);
        EXPECT_EQ(plugin.mHost->GetParameterCount(), -1);
        plugin.mHost.reset();
    }
    ExpectOrdered(trace, {"proc.setProcessing 0", "proc.setActive 0", "proc.disconnect", "ctrl.disconnect",
                          "ctrl.setComponentHandler null", "ctrl.terminate", "proc.terminate", "ModuleExit"});
}

TEST(Vst3Loading, CombinedObjectAndFactoryWithoutAudioClass)
{
    CTrace trace;
    CHostedPlugin plugin("MrvTestSingle");
    ASSERT_NE(plugin.mHost->GetLoader(), nullptr);
    EXPECT_EQ(trace.LinesStartingWith("single.initialize").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("single.connect").size(), 0u);
    EXPECT_FALSE(plugin.Loader().areConnected());
    EXPECT_EQ(trace.LinesStartingWith("single.setComponentHandler set").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("single.setComponentState gain=1.000000").size(), 1u);
    EXPECT_EQ(plugin.mHost->GetParameterCount(), 1);
    // One object answers both getState calls: the same gain twice.
    const SPluginState state = plugin.mHost->GetState();
    ASSERT_TRUE(state.gave);
    ASSERT_EQ(state.bytes.size(), 76u);
    uint32_t sizes[2];
    std::memcpy(&sizes[0], state.bytes.data(), 4);
    std::memcpy(&sizes[1], state.bytes.data() + 12, 4);
    EXPECT_EQ(sizes[0], 8u);
    EXPECT_EQ(sizes[1], 8u);
    plugin.mHost->Quit();
    EXPECT_EQ(trace.LinesStartingWith("single.terminate").size(), 1u);

    // No class of the audio category: the last class is used, and there is
    // no extended information either.
    trace.Clear();
    CHostedPlugin other("MrvTestNoAudioClass");
    EXPECT_STREQ(other.mHost->GetClassInfo().name, "MrvTestNoAudioClass");
    ASSERT_NE(other.mHost->GetLoader(), nullptr);
    EXPECT_NE(other.Loader().getProcessor(), nullptr);
    EXPECT_EQ(trace.LinesStartingWith("effect.initialize").size(), 1u);
    EXPECT_EQ(other.mHost->GetParameterCount(), 1);
    EXPECT_EQ(other.mHost->GetPluginVersion(), "");
}

TEST(Vst3LoadingFailure, MissingOrBrokenModulesGiveNeutralAnswers)
{
    CLogCapture log;
    namespace fs = std::filesystem;
    const CTempDir dir;
    const fs::path empty = fs::path(dir.Path()) / "Empty.vst3";
    fs::create_directories(empty / "Contents" / "x86_64-linux");

    struct Case { std::string path; const char* logText; };
    const Case cases[] = {
        {empty.string(), "Library not found - Path = "},
        {"/nonexistent/Nothing.vst3", "Library not found - Path = "},
        {BundlePath("MrvTestNoFactory"), "Invalid Module "},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.path);
        CTestOwner owner;
        std::string path = c.path;
        CFakeHostVST3 host(owner, path);
        // "mVst3Loader!=0" throws at debug level; the contract answers false.
        EXPECT_FALSE(host.Init());
        EXPECT_EQ(host.GetLoader(), nullptr);
        EXPECT_TRUE(log.Contains(c.logText + (c.logText[0] == 'I' ? c.path : std::string())));
        ExpectNeutral(host, false);
        host.Quit();
    }
}

// A factory that creates no processor leaves neutral answers; a controller
// that fails its initialize leaves nothing set up, and both halves are
// terminated.
TEST(Vst3LoadingFailure, FactoryRefusingCreationOrControllerRefusingInitialize)
{
    CTrace trace;
    CLogCapture log;
    {
        const CScopedEnv fault("MRV_VST3_FAULT", "create");
        CHostedPlugin plugin("MrvTestEffect");
        ASSERT_NE(plugin.mHost->GetLoader(), nullptr);
        EXPECT_EQ(plugin.Loader().getProcessor(), nullptr);
        EXPECT_EQ(plugin.mHost->GetPluginVendor(), "Morvane Test");
        ExpectNeutral(*plugin.mHost, true);
    }
    EXPECT_EQ(trace.LinesStartingWith("factory.createInstance refused").size(), 1u);
    EXPECT_TRUE(log.Contains("processor creation failed"));
    {
        const CScopedEnv fault("MRV_VST3_FAULT", "controllerinit");
        CHostedPlugin plugin("MrvTestEffect");
        ASSERT_NE(plugin.mHost->GetLoader(), nullptr);
        EXPECT_FALSE(plugin.Loader().areConnected());
        EXPECT_EQ(plugin.Loader().getMainBusMask(kOutput), 0u);
        CTestContext buffers(64);
        buffers.mMidiIn.Add(0, 0x90, 60, 100);
        plugin.mHost->Process(buffers.Block());
        plugin.mHost->AddInputChangeForProcessing(0, 0.25);
        plugin.mHost->Process(buffers.Block());
        plugin.mHost->GetState();
    }
    EXPECT_EQ(trace.LinesStartingWith("effectctrl.initialize refused").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("effectctrl.terminate").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("effect.terminate").size(), 1u);
    EXPECT_TRUE(log.Contains("component initialization failed"));
}

TEST(Vst3Loading, ValidatorRunsOnTheBundleWhenBundleLogIsDetailed)
{
    const CTempDir temp;
    const std::string report = temp.File("report.txt");
    const std::string script = temp.WriteFile("fake_validator.sh", "#!/bin/sh\necho \"$0|$1|$#\" > '" + report + "'\n");
    std::filesystem::permissions(script, std::filesystem::perms::owner_all);
    {
        const CScopedEnv validator("VST3_VALIDATOR", script.c_str());
        const CLogCapture log;  // "bundle" at debug
        CHostedPlugin plugin("MrvTestEffect");
    }
    std::ifstream in(report);
    std::string line;
    std::getline(in, line);
    EXPECT_EQ(line, script + "|" + BundlePath("MrvTestEffect") + "|1");
}
