// Editors in a real X11 window (the suite runs under Xvfb): what they draw,
// what a click on them does, how the window follows them, and that opening
// and closing them leaves nothing behind.
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "TestSupport.h"
#include "X11TestEditor.h"

using namespace AAXHostTest;
using nlohmann::json;

namespace {

struct SEditorCase {
    const char* name;
    std::string bundle;
    int width, height;        // the size the editor asks for
    const char* volumeID;     // the parameter its button sets
};

std::vector<SEditorCase> TestEditors()
{
    return {{"Tavrion V2 (CLASSIC, the default product)", AAXHOST_DEFAULT_BUNDLE, 400, 240, "0"},
            {"Tavrion V2 (STANDARD)", StandardBundle("Tavrion V2"), 400, 240, "0"},
            {"VST 3 test synth (STANDARD)", StandardBundle("MrvTestSynth"), 400, 300, "0"},
            {"VST 2 probe (CLASSIC)", Bundle("Probe"), 300, 150, "0"}};
}

json Gui(const std::string& bundle, std::vector<std::string> extra, const std::vector<std::string>& env = {})
{
    std::vector<std::string> args{"gui", bundle, "--json"};
    args.insert(args.end(), extra.begin(), extra.end());
    const SRunResult r = RunHost(args, env);
    EXPECT_EQ(r.exitCode, 0) << r.err;
    return r.Json();
}

std::vector<std::string> PluginAutomation(const json& report, const std::string& id)
{
    std::vector<std::string> kinds;
    for (const auto& a : report["automation"])
        if (a["origin"] == "plugin" && a["parameter"] == id && a["kind"] != "register")
            kinds.push_back(a["kind"].get<std::string>() + (a["kind"] == "set" ? "=" + a["value"].dump() : ""));
    return kinds;
}

std::string Center(const MrvEditor::SBox& box)
{
    return std::to_string(box.x + box.width / 2) + "," + std::to_string(box.y + box.height / 2);
}

}  // namespace

// Each editor opens at the size it asks for, draws its pattern, and asks to
// grow when its grow area is clicked: the window follows and the editor
// draws the new part too.
TEST(EditorWindow, TestEditorsDrawTheirPatternAndTheWindowFollowsTheirResize)
{
    for (const SEditorCase& c : TestEditors()) {
        SCOPED_TRACE(c.name);
        const std::string shot = TempDir("editor-pattern") + "/shot.png";
        const json report = Gui(c.bundle, {"--seconds", "0.6", "--click", Center(MrvEditor::kGrow), "--screenshot", shot});
        ASSERT_TRUE(report.is_object());
        EXPECT_EQ(report["windowed"], true);
        EXPECT_EQ(report["x_errors"], 0);
        EXPECT_EQ(report["initial_size"], (json{{"width", c.width}, {"height", c.height}}));
        const int grown = c.height + MrvEditor::kGrowStep;
        EXPECT_EQ(report["requested_sizes"].back(), (json{{"width", c.width}, {"height", grown}}));
        EXPECT_EQ(report["window"], (json{{"width", c.width}, {"height", grown}}));
        const SImage image = ReadPng(shot);
        ASSERT_EQ(image.width, c.width);
        ASSERT_EQ(image.height, grown);
        using namespace MrvEditor;
        EXPECT_EQ(image.At(kButton.x + 5, kButton.y + 5), kButtonColour);
        EXPECT_EQ(image.At(kButton.x + kButton.width - 1, kButton.y + kButton.height - 1), kButtonColour);
        EXPECT_EQ(image.At(kGrow.x + 50, kGrow.y + 20), kGrowColour);
        EXPECT_EQ(image.At(kButton.x - 1, kButton.y), kBackgroundColour);  // just outside the button
        EXPECT_EQ(image.At(c.width - 1, grown - 1), kBackgroundColour);
        EXPECT_EQ(image.At(c.width / 2, grown - 2), kBackgroundColour);  // in the new part
    }
}

TEST(EditorWindow, AClickOnTheEditorIsAUserEditThatReachesTheSound)
{
    for (const SEditorCase& c : TestEditors()) {
        SCOPED_TRACE(c.name);
        const json report = Gui(c.bundle, {"--seconds", "0.6", "--click", Center(MrvEditor::kButton)});
        ASSERT_TRUE(report.is_object());
        // Touch and release around the set; the wrapper's own set adds a
        // nested touch and release, as its parameters do for every edit.
        const std::vector<std::string> kinds = PluginAutomation(report, c.volumeID);
        ASSERT_FALSE(kinds.empty());
        EXPECT_EQ(kinds.front(), "touch");
        EXPECT_EQ(kinds.back(), "release");
        EXPECT_NE(std::find(kinds.begin(), kinds.end(), "set=0.0"), kinds.end()) << ::testing::PrintToString(kinds);
    }

    // Clicked while a chord plays: the button mutes, so the end is silent.
    const std::string dir = TempDir("editor-click-render");
    WriteMidiFile(dir + "/chord.mid", {{0.0, 8.0, 60, 100}, {0.0, 8.0, 64, 100}});
    for (bool click : {false, true}) {
        std::vector<std::string> args{"render", AAXHOST_DEFAULT_BUNDLE, "--midi", dir + "/chord.mid", "--seconds",
                                      "2", "--out", dir + "/out.wav", "--editor-at", "0.5"};
        if (click)
            args.insert(args.end(), {"--click", Center(MrvEditor::kButton)});
        const SRunResult r = RunHost(args);
        ASSERT_EQ(r.exitCode, 0) << r.err;
        const auto channels = ReadWavChannels(dir + "/out.wav");
        ASSERT_FALSE(channels.empty());
        const std::vector<float> tail(channels[0].end() - 24000, channels[0].end());
        if (click)
            EXPECT_EQ(Peak(tail), 0.0f);
        else
            EXPECT_GT(Peak(tail), 0.01f);
    }
}

TEST(EditorWindow, OpeningAndClosingAHundredTimesLeavesNothingBehind)
{
    for (const SEditorCase& c : TestEditors()) {
        SCOPED_TRACE(c.name);
        const json report = Gui(c.bundle, {"--cycles", "100", "--seconds", "0.02"});
        ASSERT_TRUE(report.is_object());
        EXPECT_EQ(report["x_errors"], 0);
        EXPECT_EQ(report["open_files"]["after_last_view"], report["open_files"]["after_first_view"]);
    }
}

TEST(EditorWindow, WithoutADisplayTheViewOpensWithoutAWindow)
{
    const SRunResult r = RunHost({"gui", AAXHOST_DEFAULT_BUNDLE, "--json"}, {"DISPLAY="});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    EXPECT_EQ(r.Json()["windowed"], false);
    const SRunResult shot = RunHost({"gui", AAXHOST_DEFAULT_BUNDLE, "--screenshot", "x.png"}, {"DISPLAY="});
    EXPECT_EQ(shot.exitCode, 1);
    EXPECT_NE(shot.err.find("--screenshot and --click need a window"), std::string::npos) << shot.err;
}
