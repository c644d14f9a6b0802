// The VST 3 state block inside the wrapper's chunk, as aaxhost saves it to
// disk, and its restore into a fresh instance.
#include <gtest/gtest.h>

#include <cstring>

#include "E2ESupport.h"

using namespace vst3e2e;

namespace {

// The instrument's own formats: component = int32 version + six doubles,
// controller = one double (the editor zoom).
constexpr uint32_t kComponentSize = 4 + 6 * 8;
constexpr uint32_t kControllerSize = 8;

double DoubleAt(const std::vector<char>& bytes, size_t at)
{
    double v = 0;
    EXPECT_LE(at + sizeof v, bytes.size());
    if (at + sizeof v <= bytes.size())
        std::memcpy(&v, bytes.data() + at, sizeof v);
    return v;
}

SRunResult Render(const std::string& dir, std::vector<std::string> extra)
{
    std::vector<std::string> args = {"render", SynthBundle(), "--out", dir + "/out.wav", "--rate", "48000",
                                     "--block", "256", "--seconds", "0.1", "--no-progress"};
    args.insert(args.end(), extra.begin(), extra.end());
    return RunHost(args);
}

}  // namespace

TEST(Vst3E2EState, BlockHoldsBothStatesAndAFreshInstanceRestoresThemInOrder)
{
    const std::string dir = TempDir("state"), saved = dir + "/saved.state";
    const SRunResult first = Render(dir, {"--set", "0=0.25", "--set", "3=0.5714285714285714", "--save-state", saved});
    ASSERT_EQ(first.exitCode, 0) << first.err;
    auto chunks = ReadState(saved);
    const AAXHost::SStateChunk* before = WrapperChunk(chunks);
    ASSERT_NE(before, nullptr);
    EXPECT_EQ(&chunks.back(), before) << "the wrapper chunk comes last";
    const auto& d = before->data;
    ASSERT_EQ(ReadU32(d, 0), kComponentSize);
    ASSERT_EQ(ReadU32(d, 4 + kComponentSize), kControllerSize);
    // The chunk is as long as the size reported for it.
    EXPECT_EQ(d.size(), kComponentSize + kControllerSize + 60);
    EXPECT_EQ(ReadU32(d, 4), 1u);  // the component's format version
    EXPECT_DOUBLE_EQ(DoubleAt(d, 8 + 0 * 8), 0.25);
    EXPECT_NEAR(DoubleAt(d, 8 + 3 * 8), 4.0 / 7.0, 1e-6);  // through a float AAX parameter
    EXPECT_DOUBLE_EQ(DoubleAt(d, 8 + kComponentSize), 1.0);  // default zoom

    // Restored: component, then the controller's view of it, then the
    // controller's own state, all before the first buffer.
    const std::string resaved = dir + "/resaved.state";
    const SRunResult run = Render(dir, {"--load-state", saved, "--save-state", resaved});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto& t = run.trace;
    const size_t component = FindLine(t, "proc.setState ");
    ASSERT_NE(component, std::string::npos);
    EXPECT_EQ(t[component], "proc.setState volume=0.250000 program=0.571429");
    // The set-up's own setComponentState comes before; the restore's follows the component.
    const size_t view = FindLine(t, "ctrl.setComponentState", component);
    const size_t controller = FindLine(t, "ctrl.setState", component);
    ASSERT_NE(view, std::string::npos);
    ASSERT_NE(controller, std::string::npos);
    EXPECT_EQ(t[view], "ctrl.setComponentState volume=0.250000 program=0.571429");
    EXPECT_EQ(t[controller], "ctrl.setState zoom=1.000");
    EXPECT_LT(view, controller);
    EXPECT_LT(controller, FindLine(t, "proc.process")) << "restored before the first buffer";
    EXPECT_EQ(CountLines(t, "proc.setState"), 1u);
    EXPECT_EQ(CountLines(t, "ctrl.setState"), 1u);

    // Saved again, the instrument gives back exactly what it was given.
    auto after = ReadState(resaved);
    const AAXHost::SStateChunk* again = WrapperChunk(after);
    ASSERT_NE(again, nullptr);
    const size_t written = 8 + kComponentSize + kControllerSize;
    ASSERT_GE(again->data.size(), written);
    EXPECT_TRUE(std::equal(d.begin(), d.begin() + written, again->data.begin()));
}
