// MIDI from a file, through aaxhost's MIDI node and the wrapper, into the
// instrument: notes as events, mapped controllers, program changes,
// after-touch and pitch bend as parameter changes, each at its own sample.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>

#include "E2ESupport.h"

using namespace vst3e2e;

namespace {

// 48 kHz at 120 BPM and 480 ticks per quarter note: one tick is 50 samples.
constexpr int kTickSamples = 50;
constexpr int kBlock = 256;
constexpr double kOneOver127 = static_cast<double>(1.0f / 127.0f);

struct SExpectedPoint {
    unsigned id;
    double value;
    long long sample;  // absolute: buffer start + offset
};

struct SExpectedNote {
    bool on;
    int channel, pitch;
    double velocity;
    long long sample;
};

struct MidiRender : ::testing::Test {
    static void SetUpTestSuite()
    {
        const std::string dir = TempDir("midi");
        const std::string midi = dir + "/all.mid";
        WriteSmf(midi, {
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
        sRun = new SRun(RunHost({"render", SynthBundle(), "--midi", midi, "--out", dir + "/out.wav", "--rate", "48000",
                                 "--block", std::to_string(kBlock), "--tempo", "120", "--seconds", "0.25",
                                 "--no-progress", "--json"}));
        sCalls = new std::vector<SProcessCall>(ProcessCalls(sRun->trace));
    }
    static void TearDownTestSuite()
    {
        delete sRun;
        delete sCalls;
        sRun = nullptr;
        sCalls = nullptr;
    }
    static SRun* sRun;
    static std::vector<SProcessCall>* sCalls;
};
SRun* MidiRender::sRun = nullptr;
std::vector<SProcessCall>* MidiRender::sCalls = nullptr;

long long TickSample(int tick) { return static_cast<long long>(tick) * kTickSamples; }

}  // namespace

TEST_F(MidiRender, RunsAndEveryBufferReachesTheProcessor)
{
    ASSERT_EQ(sRun->exitCode, 0) << sRun->err;
    EXPECT_EQ(sRun->Json()["instances"][0]["midi_in"], 13);
    ASSERT_EQ(sCalls->size(), 47u);  // 12000 samples in buffers of 256
    for (size_t k = 0; k < sCalls->size(); ++k)
        EXPECT_EQ((*sCalls)[k].samples, static_cast<long long>(k) * kBlock) << "call " << k;
    EXPECT_EQ(sCalls->back().frames, 12000 - 46 * kBlock);
}

TEST_F(MidiRender, NotesArriveAsEventsAtTheirSampleOffsets)
{
    const std::vector<SExpectedNote> expected = {
        {true, 0, 60, 100 * kOneOver127, TickSample(10)},  {false, 0, 60, 64 * kOneOver127, TickSample(100)},
        {true, 3, 72, 127 * kOneOver127, TickSample(105)}, {true, 3, 72, 0.0, TickSample(110)}};
    std::vector<SExpectedNote> seen;
    for (const auto& call : *sCalls) {
        EXPECT_EQ(call.events, static_cast<int>(call.notes.size())) << "call at " << call.samples;
        for (const auto& n : call.notes) {
            EXPECT_LT(n.offset, call.frames);
            if (n.on) {
                EXPECT_EQ(n.flags, 0) << "aaxhost's packets are not immediate";
                EXPECT_EQ(n.noteId, -1);
            }
            seen.push_back({n.on, n.channel, n.pitch, n.velocity, call.samples + n.offset});
        }
    }
    ASSERT_EQ(seen.size(), expected.size());
    for (size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i].on, expected[i].on) << i;
        EXPECT_EQ(seen[i].channel, expected[i].channel) << i;
        EXPECT_EQ(seen[i].pitch, expected[i].pitch) << i;
        EXPECT_NEAR(seen[i].velocity, expected[i].velocity, 1e-6) << i;
        EXPECT_EQ(seen[i].sample, expected[i].sample) << i;
    }
}

TEST_F(MidiRender, ControllerMessagesBecomeParameterChangesForProcessorAndController)
{
    // Volume (CC 7), program, pressure, bend: the unmapped CC 1 and the
    // out-of-range program 8 leave no trace.
    const std::vector<SExpectedPoint> expected = {
        {0, 64 * kOneOver127, TickSample(20)}, {3, 1.0, TickSample(30)},         {3, 2.0 / 7.0, TickSample(50)},
        {1, 1.0, TickSample(60)},              {2, 0.0, TickSample(70)},         {2, 8192.0 / 16383.0, TickSample(80)},
        {2, 1.0, TickSample(90)}};
    std::vector<SExpectedPoint> seen;
    std::vector<size_t> lines;
    for (const auto& call : *sCalls)
        for (const auto& p : call.params) {
            seen.push_back({p.id, p.value, call.samples + p.offset});
            lines.push_back(p.line);
        }
    ASSERT_EQ(seen.size(), expected.size());
    for (size_t i = 0; i < seen.size(); ++i) {
        EXPECT_EQ(seen[i].id, expected[i].id) << i;
        EXPECT_NEAR(seen[i].value, expected[i].value, 1e-6) << i;
        EXPECT_EQ(seen[i].sample, expected[i].sample) << i;
        // The controller hears of it before the processor's buffer runs.
        char wanted[96];
        std::snprintf(wanted, sizeof wanted, "ctrl.setParamNormalized id=%u value=%.6f", expected[i].id,
                      expected[i].value);
        const size_t at = FindLine(sRun->trace, wanted);
        EXPECT_NE(at, std::string::npos) << wanted;
        EXPECT_LT(at, lines[i]) << wanted;
    }
}

TEST_F(MidiRender, IgnoredMessagesNeverReachTheController)
{
    // Whatever the timer forwards later, the controller only ever hears the
    // two valid programs, and nothing of the unmapped CC 1.
    for (const std::string& line : sRun->trace) {
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
