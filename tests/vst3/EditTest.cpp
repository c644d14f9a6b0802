// An edit made in the instrument's editor, in both host modes: the
// controller's gesture becomes AAX touch / set / release at the host, and the
// value reaches the processor once, on the next buffer.
#include <gtest/gtest.h>

#include "E2ESupport.h"

using namespace vst3e2e;

TEST(Vst3E2EEdit, EditorGestureIsRecordedAsAutomationAndReachesTheNextBufferOnce)
{
    struct SCase {
        std::string bundle, id;
        double value;
    };
    for (const SCase& c : {SCase{SynthBundle(), "0", 0.3}, SCase{StandardBundle("MrvStrictSynth"), "7000", 0.6}}) {
        SCOPED_TRACE(c.bundle);
        const std::string value = std::to_string(c.value);
        // The view opens before the buffer holding 0.05 s: 2400 lies in the buffer at 2304.
        const SRunResult run = RunHost({"render", c.bundle, "--out", TempDir("edit") + "/out.wav", "--rate", "48000",
                                        "--block", "256", "--seconds", "0.1", "--editor-at", "0.05", "--json",
                                        "--no-progress"},
                                       {"MRV_VST3_EDIT_ON_VIEW=" + c.id + "=" + value.substr(0, 3)});
        ASSERT_EQ(run.exitCode, 0) << run.err;

        // The editor's begin/end bracket the AAX library's own touch/set/release.
        const nlohmann::json report = run.Json();
        std::vector<nlohmann::json> gestures;
        for (const auto& a : report["instances"][0]["automation"])
            if (a["kind"] != "register" && a["kind"] != "unregister")
                gestures.push_back(a);
        ASSERT_GE(gestures.size(), 3u) << run.out;
        EXPECT_EQ(gestures.front()["kind"], "touch");
        EXPECT_EQ(gestures.back()["kind"], "release");
        int open = 0, sets = 0;
        for (const auto& g : gestures) {
            EXPECT_EQ(g["parameter"], c.id);
            EXPECT_EQ(g["origin"], "plugin");
            EXPECT_EQ(g["sample"], 2304);
            open += g["kind"] == "touch" ? 1 : g["kind"] == "release" ? -1 : 0;
            EXPECT_GE(open, 0);
            if (g["kind"] == "set") {
                ++sets;
                EXPECT_GT(open, 0) << "a set outside the touch";
                EXPECT_NEAR(g["value"].get<double>(), c.value, 1e-6);
            }
        }
        EXPECT_EQ(open, 0);
        EXPECT_EQ(sets, 1);

        const auto& t = run.trace;
        const size_t edit = FindLine(t, "ctrl.edit id=" + c.id + " value=" + value);
        ASSERT_NE(edit, std::string::npos);
        // STANDARD: the controller made the value itself, nothing brings it
        // back to it (CLASSIC mirrors it, as it always did).
        if (c.bundle != SynthBundle()) {
            EXPECT_EQ(FindLine(t, "ctrl.setParamNormalized id=" + c.id, edit), std::string::npos);
        }
        const auto calls = ProcessCalls(t);
        size_t next = 0;
        while (next < calls.size() && calls[next].firstLine < edit)
            ++next;
        ASSERT_LT(next, calls.size());
        EXPECT_EQ(calls[next].samples, 2304);
        int received = 0;
        for (size_t k = 0; k < calls.size(); ++k)
            for (const auto& p : calls[k].params)
                if (std::to_string(p.id) == c.id) {
                    ++received;
                    EXPECT_EQ(k, next) << "the edit reached the call at " << calls[k].samples;
                    EXPECT_NEAR(p.value, c.value, 1e-6);
                    EXPECT_EQ(p.offset, 0);
                }
        EXPECT_EQ(received, 1);
    }
}
