// An edit made in the instrument's editor: the controller's gesture becomes
// AAX touch / set / release at the host, and the value reaches the
// processor on the next buffer.
#include <gtest/gtest.h>

#include "E2ESupport.h"

using namespace vst3e2e;

namespace {

const char* const kEdit = "MRV_VST3_EDIT_ON_VIEW=0=0.3";

// Requests other than (un)registration, in order.
std::vector<nlohmann::json> Gestures(const nlohmann::json& automation)
{
    std::vector<nlohmann::json> out;
    for (const auto& a : automation)
        if (a["kind"] != "register" && a["kind"] != "unregister")
            out.push_back(a);
    return out;
}

// The gesture of one edit of parameter "0" to 0.3, as the host sees it: the
// editor's begin/end bracket the AAX library's own touch/set/release.
void ExpectOneGesture(const std::vector<nlohmann::json>& gestures, const std::string& context)
{
    ASSERT_GE(gestures.size(), 3u) << context;
    EXPECT_EQ(gestures.front()["kind"], "touch") << context;
    EXPECT_EQ(gestures.back()["kind"], "release") << context;
    int open = 0, sets = 0;
    for (const auto& g : gestures) {
        EXPECT_EQ(g["parameter"], "0") << context;
        EXPECT_EQ(g["origin"], "plugin") << context;
        open += g["kind"] == "touch" ? 1 : g["kind"] == "release" ? -1 : 0;
        EXPECT_GE(open, 0) << context;
        if (g["kind"] == "set") {
            ++sets;
            EXPECT_GT(open, 0) << "a set outside the touch: " << context;
            EXPECT_NEAR(g["value"].get<double>(), 0.3, 1e-6) << context;
        }
    }
    EXPECT_EQ(open, 0) << context;
    EXPECT_EQ(sets, 1) << context;
}

}  // namespace

TEST(Vst3E2EEdit, EditorGestureIsRecordedAsAutomationAndReachesTheNextBuffer)
{
    const std::string dir = TempDir("edit");
    // The view opens before the buffer holding 0.05 s: 2400 lies in the buffer at 2304.
    const SRunResult run = RunHost({"render", SynthBundle(), "--out", dir + "/out.wav", "--rate", "48000", "--block",
                              "256", "--seconds", "0.1", "--editor-at", "0.05", "--json", "--no-progress"},
                             {kEdit});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto gestures = Gestures(run.Json()["instances"][0]["automation"]);
    ExpectOneGesture(gestures, run.out);
    for (const auto& g : gestures)
        EXPECT_EQ(g["sample"], 2304);

    const auto& t = run.trace;
    const size_t edit = FindLine(t, "ctrl.edit id=0 value=0.300000");
    ASSERT_NE(edit, std::string::npos);
    const auto calls = ProcessCalls(t);
    size_t next = 0;
    while (next < calls.size() && calls[next].firstLine < edit)
        ++next;
    ASSERT_LT(next, calls.size());
    EXPECT_EQ(calls[next].samples, 2304);
    ASSERT_FALSE(calls[next].params.empty()) << "the edit did not reach the next buffer";
    for (const auto& p : calls[next].params) {
        EXPECT_EQ(p.id, 0u);
        EXPECT_NEAR(p.value, 0.3, 1e-6);
        EXPECT_EQ(p.offset, 0);
    }
    // Nowhere else: not before the edit, and not again later.
    for (size_t k = 0; k < calls.size(); ++k)
        EXPECT_TRUE(k == next || calls[k].params.empty()) << "call at " << calls[k].samples;
}

TEST(Vst3E2EEdit, GuiCommandListsTheGestureAndNothingWithoutOne)
{
    for (const bool edit : {true, false}) {
        const SRunResult run = RunHost({"gui", SynthBundle(), "--ticks", "2", "--json"},
                                       edit ? std::vector<std::string>{kEdit} : std::vector<std::string>{});
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const auto gestures = Gestures(run.Json()["automation"]);
        if (edit)
            ExpectOneGesture(gestures, run.out);
        else
            EXPECT_TRUE(gestures.empty()) << run.out;
        EXPECT_EQ(CountLines(run.trace, "ctrl.createView"), 1u);
    }
}
