// The AAX transport as the instrument sees it in its process context, with
// the host playing and stopped; and the processing life cycle over a whole
// render.
#include <gtest/gtest.h>

#include <cmath>

#include "E2ESupport.h"

using namespace vst3e2e;

constexpr unsigned kValidFlags = 0x2600;  // project time music, tempo, time signature
constexpr unsigned kPlaying = 1u << 1;
constexpr int kBlock = 256;

TEST(Vst3E2ETransport, EveryBufferReportsTempoMeterAndPositionAndPlayingOnlyWhenPlaying)
{
    for (const bool stopped : {false, true}) {
        SCOPED_TRACE(stopped ? "stopped" : "playing");
        const std::string dir = TempDir(stopped ? "stopped" : "playing");
        WriteSmf(dir + "/note.mid", {{240, {0x90, 64, 90}}, {300, {0x80, 64, 0}}});
        std::vector<std::string> args = {"render", SynthBundle(), "--midi", dir + "/note.mid", "--out",
                                         dir + "/out.wav", "--rate", "48000", "--block", std::to_string(kBlock),
                                         "--tempo", "90", "--meter", "3/4", "--seconds", "0.5", "--no-progress"};
        if (stopped)
            args.push_back("--stopped");
        const SRunResult run = RunHost(args);
        ASSERT_EQ(run.exitCode, 0) << run.err;
        const auto calls = ProcessCalls(run.trace);
        ASSERT_EQ(calls.size(), 94u);  // 24000 samples
        size_t notes = 0;
        for (size_t k = 0; k < calls.size(); ++k) {
            const SProcessCall& c = calls[k];
            // A stopped host's cursor stays put.
            const long long start = stopped ? 0 : static_cast<long long>(k) * kBlock;
            EXPECT_EQ(c.state, kValidFlags | (stopped ? 0 : kPlaying)) << k;
            EXPECT_EQ(c.rate, 48000.0) << k;
            EXPECT_EQ(c.tempo, 90.0) << k;
            EXPECT_EQ(c.numerator, 3) << k;
            EXPECT_EQ(c.denominator, 4) << k;
            EXPECT_EQ(c.samples, start) << k;
            // Quarter notes through the host's 960000 ticks per quarter note.
            const double ticks = std::llround(static_cast<double>(start) / 48000.0 * 1.5 * 960000.0);
            EXPECT_NEAR(c.music, ticks / 960000.0, 1e-6) << k;
            notes += c.notes.size();
        }
        EXPECT_EQ(notes, 2u) << "notes played live arrive whether playing or not";

        // Processing is switched on once before the first buffer and off
        // after the last; the component is never switched on, only off at
        // the tear-down.
        const auto& t = run.trace;
        EXPECT_EQ(CountLines(t, "proc.setProcessing 1"), 1u);
        EXPECT_EQ(CountLines(t, "proc.setProcessing 0"), 1u);
        const size_t on = FindLine(t, "proc.setProcessing 1");
        const size_t firstProcess = FindLine(t, "proc.process");
        ASSERT_NE(on, std::string::npos);
        ASSERT_NE(firstProcess, std::string::npos);
        EXPECT_LT(on, firstProcess);
        EXPECT_LT(FindLine(t, "proc.setupProcessing mode=0 size=0 max=256 rate=48000.0"), on);
        for (size_t i = FindLine(t, "proc.setProcessing 0"); i < t.size(); ++i)
            EXPECT_NE(t[i].rfind("proc.process", 0), 0u) << "a buffer after processing was switched off";
        EXPECT_EQ(CountLines(t, "proc.setActive 1"), 0u);
        EXPECT_EQ(CountLines(t, "proc.setActive 0"), 1u);
        EXPECT_GT(FindLine(t, "proc.setActive 0"), FindLine(t, "proc.setProcessing 0"));
    }
}
