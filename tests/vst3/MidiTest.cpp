// MIDI from a file, through aaxhost's MIDI node and the wrapper, into the
// instrument: notes as events, mapped controllers, program changes,
// after-touch and pitch bend as parameter changes, each at its own sample.
// And the AAX transport as the instrument sees it in its process context,
// with the host playing and stopped, and the processing life cycle.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "E2ESupport.h"

using namespace vst3e2e;

namespace {

// 48 kHz at 120 BPM and 480 ticks per quarter note: one tick is 50 samples.
constexpr long long kTickSamples = 50;
constexpr int kBlock = 256;
constexpr unsigned kValidFlags = 0x2600;  // project time music, tempo, time signature
constexpr unsigned kPlaying = 1u << 1;
constexpr double kOneOver127 = static_cast<double>(1.0f / 127.0f);

// One render shared by the tests of this file.
const SRunResult& MidiRun()
{
    static const SRunResult run = [] {
        const std::string dir = TempDir("midi");
        WriteSmf(dir + "/all.mid", {
            {10, {0x90, 60, 100}},    // note on
            {20, {0xB0, 7, 64}},      // CC 7: mapped to the volume
            {21, {0xB0, 1, 10}},      // CC 1: not mapped
            {30, {0xC0, 7}},          // program 7 of 7 steps: 1.0
            {40, {0xC0, 8}},          // beyond the last program: ignored
            {50, {0xC0, 2}},          // 2/7
            {60, {0xD0, 0x7F}},       // channel after-touch
            {70, {0xE0, 0x00, 0x00}}, // bend fully down
            {80, {0xE0, 0x00, 0x40}}, // bend centre
            {90, {0xE0, 0x7F, 0x7F}}, // bend fully up
            {100, {0x80, 60, 64}},    // note off with a release velocity
            {105, {0x93, 72, 127}},   // note on, channel 4
            {110, {0x93, 72, 0}},     // velocity 0 stays a note-on
        });
        return RunHost({"render", SynthBundle(), "--midi", dir + "/all.mid", "--out", dir + "/out.wav", "--rate",
                        "48000", "--block", std::to_string(kBlock), "--tempo", "120", "--seconds", "0.25",
                        "--no-progress", "--json"});
    }();
    return run;
}

}  // namespace

TEST(Vst3E2EMidi, EveryBufferRunsAndNotesArriveAsEventsAtTheirSampleOffsets)
{
    ASSERT_EQ(MidiRun().exitCode, 0) << MidiRun().err;
    EXPECT_EQ(MidiRun().Json()["instances"][0]["midi_in"], 13);
    const auto calls = ProcessCalls(MidiRun().trace);
    ASSERT_EQ(calls.size(), 47u);  // 12000 samples in buffers of 256
    for (size_t k = 0; k < calls.size(); ++k)
        EXPECT_EQ(calls[k].samples, static_cast<long long>(k) * kBlock) << "call " << k;
    EXPECT_EQ(calls.back().frames, 12000 - 46 * kBlock);

    struct SNote { bool on; int channel, pitch; double velocity; long long tick; };
    const SNote expected[] = {{true, 0, 60, 100 * kOneOver127, 10}, {false, 0, 60, 64 * kOneOver127, 100},
                              {true, 3, 72, 127 * kOneOver127, 105}, {true, 3, 72, 0.0, 110}};
    size_t i = 0;
    for (const auto& call : calls) {
        EXPECT_EQ(call.events, static_cast<int>(call.notes.size())) << "call at " << call.samples;
        for (const auto& n : call.notes) {
            EXPECT_LT(n.offset, call.frames);
            if (n.on) {
                EXPECT_EQ(n.flags, 0) << "aaxhost's packets are not immediate";
                EXPECT_EQ(n.noteId, -1);
            }
            ASSERT_LT(i, std::size(expected));
            const SNote& e = expected[i++];
            EXPECT_EQ(n.on, e.on) << i;
            EXPECT_EQ(n.channel, e.channel) << i;
            EXPECT_EQ(n.pitch, e.pitch) << i;
            EXPECT_NEAR(n.velocity, e.velocity, 1e-6) << i;
            EXPECT_EQ(call.samples + n.offset, e.tick * kTickSamples) << i;
        }
    }
    EXPECT_EQ(i, std::size(expected));
}

TEST(Vst3E2EMidi, ControllerMessagesBecomeParameterChangesForProcessorAndController)
{
    // Volume (CC 7), program, pressure, bend: the unmapped CC 1 and the
    // out-of-range program 8 leave no trace.
    struct SPoint { unsigned id; double value; long long tick; };
    const SPoint expected[] = {{0, 64 * kOneOver127, 20}, {3, 1.0, 30},  {3, 2.0 / 7.0, 50},
                               {1, 1.0, 60},              {2, 0.0, 70},  {2, 8192.0 / 16383.0, 80},
                               {2, 1.0, 90}};
    const auto& trace = MidiRun().trace;
    size_t i = 0;
    for (const auto& call : ProcessCalls(trace))
        for (const auto& p : call.params) {
            ASSERT_LT(i, std::size(expected));
            const SPoint& e = expected[i++];
            EXPECT_EQ(p.id, e.id) << i;
            EXPECT_NEAR(p.value, e.value, 1e-6) << i;
            EXPECT_EQ(call.samples + p.offset, e.tick * kTickSamples) << i;
            // The controller hears of it before the processor's buffer runs.
            char wanted[96];
            std::snprintf(wanted, sizeof wanted, "ctrl.setParamNormalized id=%u value=%.6f", e.id, e.value);
            const size_t at = FindLine(trace, wanted);
            EXPECT_NE(at, std::string::npos) << wanted;
            EXPECT_LT(at, p.line) << wanted;
        }
    EXPECT_EQ(i, std::size(expected));

    // Whatever the timer forwards later, the controller only ever hears the
    // two valid programs, and nothing of the unmapped CC 1.
    for (const std::string& line : trace) {
        unsigned id = 0;
        double value = 0;
        if (std::sscanf(line.c_str(), "ctrl.setParamNormalized id=%u value=%lf", &id, &value) != 2)
            continue;
        if (id == 3) {
            EXPECT_TRUE(std::fabs(value - 1.0) < 1e-6 || std::fabs(value - 2.0 / 7.0) < 1e-6) << line;
        }
        EXPECT_NE(line, "ctrl.setParamNormalized id=0 value=0.078740") << "CC 1 value 10";
    }
}

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
