// Plug-in files that cannot give an effect, and a host whose effect was
// quit: the fake host must still exist, answer neutrally, survive every
// call, and log why.
#include <gtest/gtest.h>

#include "Vst2TestSupport.h"

using namespace Vst2Test;

namespace {

void ExpectInertHost(CFakeHostVST2& host)
{
    EXPECT_EQ(host.GetEffect(), nullptr);
    host.Init();
    host.Setup();
    EXPECT_EQ(host.GetParameterCount(), -1);
    EXPECT_EQ(host.GetPluginProductUniqueID(), -1);
    EXPECT_EQ(host.GetPluginVendor(), "");
    EXPECT_EQ(host.GetPluginVersion(), "");
    EXPECT_FALSE(host.GetParameterInfo(0).valid);
    EXPECT_FALSE(host.GetParameterValue(0).has_value());

    CTestContext ctx(32);
    ctx.FillOutputs(0.5f);
    ctx.mMidiIn.mPackets = {MidiPacket(0, {0x90, 60, 100})};
    host.Process(ctx.Block());
    EXPECT_EQ(ctx.Output(0)[0], 0.5f);  // untouched
    host.AddInputChangeForProcessing(0, 0.5);
    host.AddInputChangeForGUI(0, 0.5);

    const SPluginState state = host.GetState();
    EXPECT_FALSE(state.gave);
    EXPECT_TRUE(state.bytes.empty());
    std::vector<unsigned char> bytes(200);
    EXPECT_FALSE(host.SetState(bytes.data(), static_cast<uint32_t>(bytes.size())));

    CTestViewContainer view;
    host.CreateGUI(&view);
    EXPECT_FALSE(host.GetViewSize().known);
    EXPECT_EQ(host.TimerWakeup(), 0);
    EXPECT_TRUE(view.mSizes.empty());
    host.QuitGUI();
    host.Quit();
}

}  // namespace

TEST(FakeHostVST2BadInput, FilesThatGiveNoEffectAndAQuitPlugInLeaveAnInertHost)
{
    const CTempDir dir;
    const std::string textFile = dir.WriteFile("plain-text.so", "not a shared object\n");
    const std::pair<std::string, const char*> cases[] = {
        {BuiltPlugin("no-such-plugin.so"), "VST Plugin main entry not found ("},
        {textFile, "VST Plugin main entry not found ("},
        {BuiltPlugin("vst2probe_noentry.so"), "VST Plugin main entry not found ("},
        {BuiltPlugin("vst2probe_nullentry.so"), "Failed to create effect instance ("},
    };
    for (const auto& c : cases) {
        CProbeRecord record;
        CLogCapture log({"bundle", "process"});
        CTestOwner owner;
        std::string pluginPath = c.first;
        CFakeHostVST2 host(owner, pluginPath);
        EXPECT_TRUE(log.Contains(c.second + c.first + ")")) << c.first;
        ExpectInertHost(host);
        if (c.first.find("nullentry") != std::string::npos) {
            EXPECT_EQ(record.Lines(), std::vector<std::string>{"entry VSTPluginMain refused"});
        }
    }
    CProbeRecord record;
    HostedPlugin hosted(BuiltPlugin("vst2probe.so"));
    hosted.host->Quit();
    record.Clear();
    ExpectInertHost(*hosted.host);
    EXPECT_TRUE(record.Lines().empty()) << "nothing reaches a quit plug-in";
}

// A context with missing fields, and parameter indices out of range.
TEST(FakeHostVST2BadInput, ContextWithMissingFieldsIsToleratedAndBadIndicesAreReported)
{
    CProbeRecord record;
    HostedPlugin hosted(BuiltPlugin("vst2probe.so"));
    CTestContext ctx(16);
    ctx.mContext.mMidiIn = nullptr;
    ctx.mContext.mMidiTransport = nullptr;
    hosted.host->Process(ctx.Block());
    ctx.mContext.mSampleRate = nullptr;
    ctx.mContext.mBufferLength = nullptr;
    hosted.host->Process(ctx.Block());
    // The first call set the rate; without a length nothing is rendered.
    EXPECT_EQ(record.LinesStartingWith("process").size(), 1u);
    EXPECT_EQ(record.LinesStartingWith("dispatch effSetSampleRate").size(), 1u);

    // Unconfigured log: the assertion only reports, the plug-in is asked anyway.
    const SParameterInfo far = hosted.host->GetParameterInfo(99);
    EXPECT_TRUE(far.valid);
    EXPECT_EQ(far.name, "");
    EXPECT_EQ(far.defaultValue, 0.0);

    // A configured assertion throws; the contract turns it into one line and
    // a neutral answer.
    CLogCapture log({"fakehost"});
    EXPECT_FALSE(hosted.host->GetParameterInfo(-1).valid);
    EXPECT_TRUE(log.Contains("0<=inID && inID<GetParameterCount()"));
    EXPECT_TRUE(log.Contains("Exception in GetParameterInfo"));
}

TEST(FakeHostVST2BadInput, EditorWithoutRectangleKeepsTheSize)
{
    const CScopedEnv noRect("VST2PROBE_NO_RECT", "1");
    CProbeRecord record;
    HostedPlugin hosted(BuiltPlugin("vst2probe.so"));
    CTestViewContainer view;
    hosted.host->CreateGUI(&view);
    EXPECT_FALSE(hosted.host->GetViewSize().known);
    hosted.host->TimerWakeup();
    EXPECT_TRUE(view.mSizes.empty());
}

TEST(FakeHostVST2BadInput, PluginWithMoreOutputsThanTheHostIsSilencedNotOverrun)
{
    const CScopedEnv outputs("VST2PROBE_OUTPUTS", "40");
    CProbeRecord record;
    HostedPlugin hosted(BuiltPlugin("vst2probe.so"));
    CTestContext ctx(32);
    ctx.FillOutputs(0.5f);
    hosted.host->Process(ctx.Block());
    EXPECT_TRUE(record.LinesStartingWith("process").empty());
    for (int c = 0; c < CTestContext::kOutputs; ++c)
        EXPECT_TRUE(ctx.OutputIsSilent(c)) << c;
}
