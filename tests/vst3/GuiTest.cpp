// The plug-in's editor inside an AAX view container.
#include "Vst3TestSupport.h"

using namespace vst3test;
using namespace Steinberg;
using namespace Steinberg::Vst;

TEST(Vst3Gui, OpenResizeAndClose)
{
    CTrace trace;
    CLogCapture log;
    CHostedPlugin plugin("MrvTestSynth");
    CFakeHostVST3& host = *plugin.mHost;

    CTestViewContainer container;
    host.CreateGUI(&container);
    EXPECT_EQ(trace.LinesStartingWith("view.attached parent=0x1234 type=NSView").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("view.setFrame set").size(), 1u);
    EXPECT_EQ(host.GetViewSize().width, 400);
    EXPECT_EQ(host.GetViewSize().height, 300);

    NotifyController(plugin.Loader(), "TestResize", {{"width", 640}, {"height", 480}});
    ASSERT_EQ(container.mSizes.size(), 1u);
    EXPECT_EQ(container.mSizes[0].horz, 640);
    EXPECT_EQ(container.mSizes[0].vert, 480);
    EXPECT_EQ(trace.LinesStartingWith("view.onSize").size(), 0u);

    // A second CreateGUI re-attaches the same view with a new frame.
    CTestViewContainer second;
    second.mType = AAX_eViewContainer_Type_UIView;
    host.CreateGUI(&second);
    EXPECT_EQ(trace.LinesStartingWith("ctrl.createView").size(), 1u);
    EXPECT_EQ(trace.LinesStartingWith("view.attached parent=0x1234 type=HIView").size(), 1u);
    NotifyController(plugin.Loader(), "TestResize", {{"width", 300}, {"height", 200}});
    EXPECT_EQ(container.mSizes.size(), 1u);
    ASSERT_EQ(second.mSizes.size(), 1u);
    EXPECT_EQ(second.mSizes[0].horz, 300);

    host.QuitGUI();
    const int removed = trace.IndexOf("view.removed");
    EXPECT_GT(removed, trace.IndexOf("view.setFrame null"));
    EXPECT_GT(trace.IndexOf("view.destroyed"), removed);
    EXPECT_FALSE(log.Contains("mView not released"));
    EXPECT_FALSE(host.GetViewSize().known);
    host.QuitGUI();  // nothing left to close
}

TEST(Vst3Gui, ContainerWithoutParentOrPluginWithoutView)
{
    {
        CHostedPlugin plugin("MrvTestSynth");
        CTestViewContainer container;
        container.mParent = nullptr;
        container.mType = AAX_eViewContainer_Type_NULL;
        plugin.mHost->CreateGUI(&container);
        // The view exists but is not attached: its size is still readable.
        EXPECT_EQ(plugin.mHost->GetViewSize().width, 400);
    }
    CHostedPlugin single("MrvTestSingle");  // createView gives nothing
    CTestViewContainer container;
    single.mHost->CreateGUI(&container);
    EXPECT_FALSE(single.mHost->GetViewSize().known);
}
