#include "OverheadCase.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <limits>
#include <memory>
#include <vector>

#include "BenchRig.h"
#include "DirectGroup.h"
#include "InstructionCounter.h"

namespace BenchOverhead {

namespace {

constexpr int kVoices = 8;
// Buffers both sides play before anything is measured: start-up work and
// the chord's attack are over by then.
constexpr int kWarmupBuffers = 32;

// Measured buffers per round: about the same plug-in work for every case.
int BuffersPerRound(const SCase& c, bool instructions)
{
    const int instanceBuffers = instructions ? 256 : 512;
    return std::max(2, instanceBuffers / c.instances);
}
// Time is read in rounds and the quickest round kept: on a shared machine
// the others carry the noise of other processes.
int Rounds(bool instructions) { return instructions ? 1 : 9; }

// The monotonic clock, read without a system call: the thread CPU clock is
// too coarse here for calls of a microsecond.
double Nanoseconds()
{
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// What reading the clock twice costs, taken off every timed call.
double ClockPairNanoseconds()
{
    static const double cost = [] {
        constexpr int kPairs = 20000;
        const double begin = Nanoseconds();
        for (int i = 0; i < kPairs; ++i) {
            volatile double a = Nanoseconds();
            (void)a;
        }
        return (Nanoseconds() - begin) / kPairs;
    }();
    return cost;
}

// Measures one side's calls: instructions when a counter is given, else
// time.
class CMeter {
public:
    explicit CMeter(CInstructionCounter* counter) : mCounter(counter) {}
    void Begin()
    {
        if (mCounter)
            mCounter->Reset();
        mNanoseconds = 0.0;
        mCalls = 0;
    }
    template <typename F>
    void Measure(F&& call)
    {
        ++mCalls;
        if (mCounter) {
            mCounter->Start();
            call();
            mCounter->Stop();
            return;
        }
        const double start = Nanoseconds();
        call();
        mNanoseconds += Nanoseconds() - start - ClockPairNanoseconds();
    }
    bool PerCall(double& figure, std::string& error)
    {
        if (mCalls == 0)
            return false;
        if (mCounter) {
            uint64_t total = 0;
            if (!mCounter->Total(total, error))
                return false;
            figure = static_cast<double>(total) / mCalls;
        } else {
            figure = std::max(0.0, mNanoseconds / mCalls);
        }
        return true;
    }

private:
    CInstructionCounter* mCounter;
    double mNanoseconds = 0.0;
    int mCalls = 0;
};

// Sample-for-sample comparison of every channel the plug-in writes.
struct SComparison {
    long long differing = 0;
    double largest = 0.0;
    float peak = 0.0f;
    void Add(const AAXDirect::CDirectGroup& direct, const BenchProcess::CBenchRig& wrapped, int blockSize)
    {
        for (int instance : {0, wrapped.Instances() - 1})
            for (int ch = 0; ch < direct.OutputChannels(); ++ch) {
                const float* a = direct.Output(instance, ch);
                const float* b = wrapped.Output(instance, ch);
                for (int s = 0; s < blockSize; ++s) {
                    if (instance == 0 && ch < 2)
                        peak = std::max(peak, std::fabs(a[s]));
                    if (a[s] != b[s]) {
                        ++differing;
                        largest = std::max(largest, std::fabs(static_cast<double>(a[s]) - b[s]));
                    }
                }
            }
    }
};

std::vector<AAX_CMidiPacket> NoMidi() { return {}; }

// The transport both sides see: 120 bpm, 4/4, playing.
AAXDirect::SDirectTransport Transport(int64_t position, double sampleRate)
{
    AAXDirect::SDirectTransport t;
    t.tempo = 120.0;
    t.samplePosition = position;
    t.quarterNotes = static_cast<double>(position) / sampleRate * t.tempo / 60.0;
    return t;
}

}  // namespace

std::string SCase::Name() const
{
    return plugin->label + (chords ? "/chords/" : "/no-midi/") + std::to_string(blockSize) + "/x" +
           std::to_string(instances);
}

SCaseResult RunCase(const SCase& c, CInstructionCounter* counter)
{
    SCaseResult result;
    const double rate = BenchProcess::kSampleRate;
    BenchProcess::CBenchRig wrapped;
#ifndef BENCH_HAS_VST3
    if (c.plugin->vst3) {
        result.error = "no direct host for this plug-in's format in this build";
        return result;
    }
#endif
    auto direct = std::make_unique<AAXDirect::CDirectGroup>();
    {
        BenchProcess::CQuietStdout quiet;
        AAXDirect::SDirectSetup setup;
        setup.path = c.plugin->direct;
        setup.sampleRate = rate;
        // What the wrapper's host mode announces: STANDARD 4096, CLASSIC its
        // VST 3 maximum of 256 (its VST 2 start-up announces none).
        setup.maxBlock = c.plugin->standard ? 4096 : (c.plugin->vst3 ? 256 : c.blockSize);
        setup.standard = c.plugin->standard;
        if (!wrapped.Open(c.plugin->bundle, c.blockSize, c.instances, result.error) ||
            !direct->Open(setup, c.instances, result.error))
            return result;
    }
    if (direct->OutputChannels() == 0) {
        result.error = "the plug-in has no output";
        return result;
    }

    SComparison comparison;
    int64_t position = 0;
    auto playBoth = [&](const std::vector<AAX_CMidiPacket>& midi) {
        direct->Prepare(midi, Transport(position, rate), c.blockSize);
        direct->Process(c.blockSize);
        wrapped.RunBuffer(midi);
        position += c.blockSize;
        comparison.Add(*direct, wrapped, c.blockSize);
    };
    const std::vector<AAX_CMidiPacket> chord = BenchProcess::ChordOn(c.chords ? kVoices : 0);
    for (int i = 0; i < kWarmupBuffers; ++i)
        playBoth(i == 0 ? chord : NoMidi());
    if (c.chords && !(comparison.peak > 0.0f)) {
        result.error = "the chord does not sound";
        return result;
    }

    // Each side plays the same stretch of buffers in turn, the other side
    // catching up afterwards, so both stay at the same place in the song.
    const std::vector<AAX_CMidiPacket> midi =
        c.chords ? BenchProcess::Restrikes(kEventsPerBuffer, kVoices, c.blockSize) : NoMidi();
    const bool instructions = counter != nullptr;
    const int buffers = BuffersPerRound(c, instructions);
    CMeter meter(counter);
    double bestDirect = std::numeric_limits<double>::max(), bestWrapped = bestDirect;
    for (int round = 0; round < Rounds(instructions); ++round) {
        double figure = 0.0;
        meter.Begin();
        for (int b = 0; b < buffers; ++b) {
            direct->Prepare(midi, Transport(position + b * c.blockSize, rate), c.blockSize);
            meter.Measure([&] { direct->Process(c.blockSize); });
        }
        if (!meter.PerCall(figure, result.error))
            return result;
        bestDirect = std::min(bestDirect, figure);
        meter.Begin();
        for (int b = 0; b < buffers; ++b) {
            wrapped.Prepare(midi);
            meter.Measure([&] { wrapped.Process(); });
        }
        if (!meter.PerCall(figure, result.error))
            return result;
        bestWrapped = std::min(bestWrapped, figure);
        position += static_cast<int64_t>(buffers) * c.blockSize;
        comparison.Add(*direct, wrapped, c.blockSize);  // the last buffer of the round
    }
    result.direct = bestDirect;
    result.wrapped = bestWrapped;
    result.peakDb = comparison.peak > 0.0f ? 20.0 * std::log10(static_cast<double>(comparison.peak)) : -INFINITY;
    char text[160];
    if (comparison.differing == 0) {
        result.outputs = "identical";
        result.outputsOk = true;
    } else if (!c.plugin->notDeterministic.empty()) {
        std::snprintf(text, sizeof text, "differ as expected (%s)", c.plugin->notDeterministic.c_str());
        result.outputs = text;
        result.outputsOk = true;
    } else {
        std::snprintf(text, sizeof text, "DIFFER: %lld samples, by up to %.3g", comparison.differing,
                      comparison.largest);
        result.outputs = text;
    }
    result.ok = true;
    return result;
}

}  // namespace BenchOverhead
