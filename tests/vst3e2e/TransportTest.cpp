// The AAX transport as the instrument sees it in its process context, with
// the host playing and stopped; and the processing life cycle over a whole
// render.
#include <gtest/gtest.h>

#include <cmath>

#include "E2ESupport.h"

using namespace vst3e2e;

namespace {

constexpr unsigned kValidFlags = 0x2600;  // project time music, tempo, time signature
constexpr unsigned kPlaying = 1u << 1;
constexpr int kBlock = 256;

std::vector<std::string> TransportArgs(const std::string& dir, bool stopped)
{
    const std::string midi = dir + "/note.mid";
    WriteSmf(midi, {{240, {0x90, 64, 90}}, {300, {0x80, 64, 0}}});
    std::vector<std::string> args = {"render", SynthBundle(), "--midi", midi, "--out", dir + "/out.wav",
                                      "--rate", "48000", "--block", std::to_string(kBlock), "--tempo", "90",
                                      "--meter", "3/4", "--seconds", "0.5", "--no-progress"};
    if (stopped)
        args.push_back("--stopped");
    return args;
}

}  // namespace

TEST(Vst3E2ETransport, PlayingReportsPlayingTempoMeterAndPositionOfEveryBuffer)
{
    const SRun run = RunHost(TransportArgs(TempDir("playing"), false));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto calls = ProcessCalls(run.trace);
    ASSERT_EQ(calls.size(), 94u);  // 24000 samples
    for (size_t k = 0; k < calls.size(); ++k) {
        const SProcessCall& c = calls[k];
        const long long start = static_cast<long long>(k) * kBlock;
        EXPECT_EQ(c.state, kValidFlags | kPlaying) << k;
        EXPECT_EQ(c.rate, 48000.0) << k;
        EXPECT_EQ(c.tempo, 90.0) << k;
        EXPECT_EQ(c.numerator, 3) << k;
        EXPECT_EQ(c.denominator, 4) << k;
        EXPECT_EQ(c.samples, start) << k;
        // Quarter notes through the host's 960000 ticks per quarter note.
        const double ticks = std::llround(static_cast<double>(start) / 48000.0 * 1.5 * 960000.0);
        EXPECT_NEAR(c.music, ticks / 960000.0, 1e-6) << k;
    }
    EXPECT_NEAR(calls.back().music, 93 * 256 / 48000.0 * 1.5, 1e-6);
}

TEST(Vst3E2ETransport, StoppedReportsTempoMeterAndPositionButNotPlaying)
{
    const SRun run = RunHost(TransportArgs(TempDir("stopped"), true));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto calls = ProcessCalls(run.trace);
    ASSERT_EQ(calls.size(), 94u);
    size_t notes = 0;
    for (const SProcessCall& c : calls) {
        EXPECT_EQ(c.state, kValidFlags) << c.samples;
        EXPECT_EQ(c.tempo, 90.0);
        EXPECT_EQ(c.numerator, 3);
        EXPECT_EQ(c.denominator, 4);
        EXPECT_EQ(c.samples, 0);  // a stopped host's cursor stays put
        EXPECT_EQ(c.music, 0.0);
        notes += c.notes.size();
    }
    EXPECT_EQ(notes, 2u) << "notes played live still arrive while stopped";
}

TEST(Vst3E2ELifecycle, ProcessingIsSwitchedOnOnceBeforeTheFirstBufferAndOffAfterTheLast)
{
    const SRun run = RunHost(TransportArgs(TempDir("lifecycle"), false));
    ASSERT_EQ(run.exitCode, 0) << run.err;
    const auto& t = run.trace;
    EXPECT_EQ(CountLines(t, "proc.setProcessing 1"), 1u);
    EXPECT_EQ(CountLines(t, "proc.setProcessing 0"), 1u);
    const size_t on = FindLine(t, "proc.setProcessing 1");
    const size_t firstProcess = FindLine(t, "proc.process");
    ASSERT_NE(on, std::string::npos);
    ASSERT_NE(firstProcess, std::string::npos);
    EXPECT_LT(on, firstProcess);
    EXPECT_LT(FindLine(t, "proc.setupProcessing mode=0 size=0 max=256 rate=48000.0"), on);
    size_t lastProcess = 0;
    for (size_t i = 0; i < t.size(); ++i)
        if (t[i].rfind("proc.process", 0) == 0)
            lastProcess = i;
    EXPECT_GT(FindLine(t, "proc.setProcessing 0"), lastProcess);
    // The component is never switched on; only the tear-down switches it off.
    EXPECT_EQ(CountLines(t, "proc.setActive 1"), 0u);
    EXPECT_EQ(CountLines(t, "proc.setActive 0"), 1u);
    EXPECT_GT(FindLine(t, "proc.setActive 0"), FindLine(t, "proc.setProcessing 0"));
}
