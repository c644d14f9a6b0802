// CWrapperGUI borrows the instance's fake host only once the view container
// exists, and never outlives or deletes it.
#include <gtest/gtest.h>

#include "CWrapperGUI.h"
#include "WrapperFixture.h"

namespace {

// Opens the view hooks the host would reach through SetViewContainer.
class TestableGUI : public CWrapperGUI {
public:
    using CWrapperGUI::CreateViewContainer;
    using CWrapperGUI::DeleteViewContainer;
};

struct GUIDeleter {
    void operator()(CWrapperGUI* gui) const { gui->Release(); }
};

using WrapperGUITest = WrapperTest;

}  // namespace

TEST_F(WrapperGUITest, ForwardsToTheFakeHostOnlyAfterCreateViewContainer)
{
    auto wrapper = MakeWrapper();
    std::unique_ptr<CWrapperGUI, GUIDeleter> gui(new TestableGUI);
    gui->AddRef();
    ASSERT_EQ(gui->Initialize(wrapper->GetPrivateUnknown()), AAX_SUCCESS);
    EXPECT_EQ(mLog->Find("gui", "debug", "CreateViewContents").size(), 1u);
    Script().journal.clear();

    AAX_Point size(11.0f, 22.0f);
    EXPECT_EQ(gui->GetViewSize(&size), AAX_SUCCESS);
    EXPECT_EQ(size.vert, 11.0f);
    EXPECT_EQ(size.horz, 22.0f);
    EXPECT_EQ(gui->TimerWakeup(), AAX_SUCCESS);
    EXPECT_TRUE(Script().journal.empty());

    auto* testable = static_cast<TestableGUI*>(gui.get());
    testable->CreateViewContainer();
    EXPECT_EQ(Script().journal, (std::vector<std::string>{"CreateGUI"}));
    EXPECT_EQ(gui->GetViewSize(&size), AAX_SUCCESS);
    EXPECT_EQ(size.horz, 640.0f) << "width goes into horz";
    EXPECT_EQ(size.vert, 480.0f);
    gui->TimerWakeup();

    // Closing twice asks the plug-in to close twice; it must cope.
    testable->DeleteViewContainer();
    testable->DeleteViewContainer();
    EXPECT_EQ(Script().journal,
              (std::vector<std::string>{"CreateGUI", "TimerWakeup", "QuitGUI", "QuitGUI"}));

    gui.reset();
    EXPECT_EQ(std::count(Script().journal.begin(), Script().journal.end(), "~FakeHostDouble"), 0)
        << "the view only borrows the host";
    EXPECT_EQ(wrapper->GetFakeHost() != nullptr, true);
}

TEST_F(WrapperGUITest, WithoutFakeHostEveryCallIsAHarmlessSuccess)
{
    WithoutHost();
    auto wrapper = MakeWrapper();
    std::unique_ptr<CWrapperGUI, GUIDeleter> gui(new TestableGUI);
    gui->AddRef();
    gui->Initialize(wrapper->GetPrivateUnknown());
    auto* testable = static_cast<TestableGUI*>(gui.get());
    testable->CreateViewContainer();
    AAX_Point size(1.0f, 2.0f);
    EXPECT_EQ(gui->GetViewSize(&size), AAX_SUCCESS);
    EXPECT_EQ(size.vert, 1.0f);
    testable->DeleteViewContainer();
    EXPECT_EQ(gui->TimerWakeup(), AAX_SUCCESS);
}
