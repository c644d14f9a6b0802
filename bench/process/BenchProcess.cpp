// Cost of the real-time callback through real bundles: one call of the
// registered process procedure per buffer, timed alone (the host's own
// per-buffer work is left off the clock), with the heap allocations made
// inside it, and the peak memory of one and of eight instances.
#include <benchmark/benchmark.h>

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "AllocationCount.h"
#include "BenchRig.h"
#include "BenchState.h"
#include "PeakMemory.h"

namespace BenchProcess {

namespace {

struct SBundleChoice {
    const char* label;
    std::string path;
};

enum class ECase { kIdle, kVoices, kMidi16, kParameter, kBypass, kSilence, kBatch8 };

struct SCaseInfo {
    ECase kind;
    const char* name;
};

constexpr SCaseInfo kCases[] = {
    {ECase::kIdle, "idle"},
    {ECase::kVoices, "8voices"},
    {ECase::kMidi16, "8voices+16midi"},
    {ECase::kParameter, "8voices+param"},
    {ECase::kBypass, "bypass"},
    {ECase::kSilence, "silence"},
    {ECase::kBatch8, "8instances_8voices"},
};

constexpr int kBlockSizes[] = {64, 256, 1024};
constexpr int kVoices = 8;
// Buffers run before measuring: first-buffer set-up and the attack of the
// chord are over by then.
constexpr int kWarmupBuffers = 32;
// The VST parameter that changes before each buffer (volume, in both our
// instruments); two close values so the sound stays put.
const char* const kChangedParameter = "0";

double ThreadCpuSeconds(const timespec& from, const timespec& to)
{
    return static_cast<double>(to.tv_sec - from.tv_sec) + 1e-9 * static_cast<double>(to.tv_nsec - from.tv_nsec);
}

// The thread CPU clock is a system call; what the measuring code itself
// costs on that clock is taken off every reading.
double ClockOverheadSeconds()
{
    static const double overhead = [] {
        constexpr int kRounds = 20000;
        double total = 0.0;
        for (int i = 0; i < kRounds; ++i) {
            timespec a{}, b{};
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &a);
            benchmark::DoNotOptimize(std::chrono::steady_clock::now());
            benchmark::DoNotOptimize(std::chrono::steady_clock::now());
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &b);
            total += ThreadCpuSeconds(a, b);
        }
        return total / kRounds;
    }();
    return overhead;
}

// BENCH_PROCESS_ALLOC_TRACE set: who allocated inside measured calls.
bool gTraceAllocations = false;

void PrintAllocationSources(std::FILE* out)
{
    for (const AAXHost::SAllocationSource& source : AAXHost::AllocationSources()) {
        std::fprintf(out, "allocations inside measured calls: %llu by %s, first from:\n",
                     static_cast<unsigned long long>(source.allocations), source.library.c_str());
        for (const std::string& frame : source.firstStack)
            std::fprintf(out, "  %s\n", frame.c_str());
    }
}

bool UsesChord(ECase kind) { return kind != ECase::kIdle && kind != ECase::kBypass && kind != ECase::kSilence; }

void RunProcess(benchmark::State& state, const std::string& bundlePath, ECase kind, int blockSize)
{
    CBenchRig rig;
    std::string error;
    if (!rig.Open(bundlePath, blockSize, kind == ECase::kBatch8 ? 8 : 1, error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    if (kind == ECase::kBypass && !rig.SetBypass(true, error)) {
        state.SkipWithError(error.c_str());
        return;
    }

    // Warm-up, counted apart: what the first buffers allocate is reported
    // but does not belong to the steady state.
    uint64_t warmup = 0;
    const std::vector<AAX_CMidiPacket> chord = ChordOn(UsesChord(kind) ? kVoices : 0);
    const std::vector<AAX_CMidiPacket> none;
    for (int i = 0; i < kWarmupBuffers; ++i) {
        rig.Prepare(i == 0 ? chord : none);
        AAXHost::CAllocationScope scope;
        if (kind == ECase::kSilence)
            rig.ProcessWithoutWrapper();
        else
            rig.Process();
        warmup += scope.Allocations();
    }
    const float warmPeak = rig.MainPeak();

    // Each case must really take its path, or its figure means nothing.
    if (kind == ECase::kBypass || kind == ECase::kSilence) {
        constexpr int kCopied = 32;
        rig.FillInputs(kCopied, 0.25f);
        rig.Prepare(none);
        rig.FillOutputs(kCopied, 1.0f);
        if (kind == ECase::kSilence)
            rig.ProcessWithoutWrapper();
        else
            rig.Process();
        if (!rig.OutputsEqual(kCopied, kind == ECase::kBypass ? 0.25f : 0.0f)) {
            state.SkipWithError(kind == ECase::kBypass ? "bypass did not copy the inputs"
                                                       : "the silence path did not clear the outputs");
            return;
        }
    } else if (UsesChord(kind) && !(warmPeak > 0.0f)) {
        state.SkipWithError("the chord does not sound");
        return;
    }

    const std::vector<AAX_CMidiPacket> restrikes =
        kind == ECase::kMidi16 ? Restrikes(16, kVoices, blockSize) : std::vector<AAX_CMidiPacket>();
    ClockOverheadSeconds();
    AAXHost::ResetAllocationCount();  // the sources named below are the measured calls'
    uint64_t measured = 0;
    double seconds = 0.0, cpuSeconds = 0.0;
    int64_t buffers = 0;
    for (auto _ : state) {
        if (kind == ECase::kParameter &&
            !rig.SetParameter(kChangedParameter, (buffers & 1) ? 0.70 : 0.72, error)) {
            state.SkipWithError(error.c_str());
            return;
        }
        rig.Prepare(restrikes);
        std::chrono::steady_clock::time_point start, stop;
        timespec cpuStart{}, cpuStop{};
        {
            AAXHost::CAllocationScope scope;
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &cpuStart);
            start = std::chrono::steady_clock::now();
            if (kind == ECase::kSilence)
                rig.ProcessWithoutWrapper();
            else
                rig.Process();
            stop = std::chrono::steady_clock::now();
            clock_gettime(CLOCK_THREAD_CPUTIME_ID, &cpuStop);
            measured += scope.Allocations();
        }
        const double elapsed = std::chrono::duration<double>(stop - start).count();
        state.SetIterationTime(elapsed);
        seconds += elapsed;
        cpuSeconds += ThreadCpuSeconds(cpuStart, cpuStop);
        ++buffers;
    }
    if (buffers == 0)
        return;

    const double perBuffer = seconds / static_cast<double>(buffers);
    state.counters["ns_per_buffer"] = perBuffer * 1e9;
    // The thread's own CPU time: on a shared machine the wall clock also
    // counts the time other processes held the core.
    const double cpuPerBuffer = std::max(0.0, cpuSeconds / static_cast<double>(buffers) - ClockOverheadSeconds());
    state.counters["cpu_ns_per_buffer"] = cpuPerBuffer * 1e9;
    state.counters["rtf_cpu"] = cpuPerBuffer > 0.0 ? (blockSize / cpuPerBuffer) / kSampleRate : 0.0;
    // How many times faster than real time the whole batch renders.
    state.counters["rtf"] = perBuffer > 0.0 ? (blockSize / perBuffer) / kSampleRate : 0.0;
    state.counters["allocs_per_buffer"] = static_cast<double>(measured) / static_cast<double>(buffers);
    state.counters["warmup_allocs"] = static_cast<double>(warmup);
    if (measured > 0 && gTraceAllocations)
        PrintAllocationSources(stderr);
    char label[64];
    std::snprintf(label, sizeof label, "main peak %.1f dBFS",
                  warmPeak > 0.0f ? 20.0 * std::log10(static_cast<double>(warmPeak)) : -INFINITY);
    state.SetLabel(label);
}

void RunPeakMemory(benchmark::State& state, const std::string& bundlePath, int instances)
{
    SMemoryFigures base, loaded;
    std::string error;
    for (auto _ : state) {
        if (!MeasurePeakMemory(bundlePath, 0, base, error) || !MeasurePeakMemory(bundlePath, instances, loaded, error)) {
            state.SkipWithError(error.c_str());
            return;
        }
    }
    state.counters["peak_rss_kb"] = static_cast<double>(loaded.peakKb);
    state.counters["rss_kb"] = static_cast<double>(loaded.currentKb);
    // The same program with the bundle opened and no instance.
    state.counters["bundle_only_peak_kb"] = static_cast<double>(base.peakKb);
    state.counters["peak_kb_per_instance"] = static_cast<double>(loaded.peakKb - base.peakKb) / instances;
}

// One host automation point reaching the plug-in: the host's
// UpdateParameterNormalizedValue for a wrapped parameter, the value changing
// every time (main thread work, outside the real-time path).
void RunAutomationPoint(benchmark::State& state, const std::string& bundlePath, const char* id = "0")
{
    CBenchRig rig;
    std::string error;
    if (!rig.Open(bundlePath, 256, 1, error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    AAX_IACFEffectParameters* effect = rig.Effect(0);
    double value = 0.3;
    // An unknown identifier would time the refusal, not a point.
    if (effect->GetParameterNormalizedValue(id, &value) != AAX_SUCCESS) {
        state.SkipWithError((std::string("no parameter ") + id).c_str());
        return;
    }
    value = 0.3;
    for (auto _ : state) {
        value = value == 0.3 ? 0.31 : 0.3;
        effect->UpdateParameterNormalizedValue(id, value, AAX_eUpdateSource_Unspecified);
    }
    rig.Process();  // the queued values reach the plug-in before it goes
}

void RegisterAll(const std::vector<SBundleChoice>& bundles)
{
    for (const auto& bundle : bundles) {
        {
            const std::string path = bundle.path;
            benchmark::RegisterBenchmark((std::string("AutomationPoint/") + bundle.label).c_str(),
                                         [path](benchmark::State& state) { RunAutomationPoint(state, path); })
                ->Unit(benchmark::kNanosecond);
        }
        for (const auto& c : kCases)
            for (int block : kBlockSizes) {
                const std::string name =
                    std::string("Process/") + bundle.label + "/" + c.name + "/" + std::to_string(block);
                const std::string path = bundle.path;
                const ECase kind = c.kind;
                benchmark::RegisterBenchmark(name.c_str(), [path, kind, block](benchmark::State& state) {
                    RunProcess(state, path, kind, block);
                })->UseManualTime()->Unit(benchmark::kMicrosecond);
            }
        for (int instances : {1, 8}) {
            const std::string name =
                std::string("PeakMemory/") + bundle.label + "/instances:" + std::to_string(instances);
            const std::string path = bundle.path;
            benchmark::RegisterBenchmark(name.c_str(), [path, instances](benchmark::State& state) {
                RunPeakMemory(state, path, instances);
            })->Iterations(1)->Unit(benchmark::kMillisecond);
        }
    }
}

}  // namespace

}  // namespace BenchProcess

int main(int argc, char** argv)
{
    using namespace BenchProcess;
    if (argc == 4 && std::strcmp(argv[1], kPeakMemoryFlag) == 0)
        return RunPeakMemoryChild(argv[2], std::atoi(argv[3]));

    // BENCH_PROCESS_ALLOC_TRACE=1 prints which library allocated inside
    // measured calls, with the stack of its first allocation.
    gTraceAllocations = std::getenv("BENCH_PROCESS_ALLOC_TRACE") != nullptr;

    std::vector<SBundleChoice> bundles{{"TavrionV2", BENCH_TAVRION_BUNDLE},
                                       {"TavrionV2-standard", BENCH_TAVRION_STD_BUNDLE}};
    if (std::strlen(BENCH_VST3_BUNDLE) > 0)
        bundles.push_back({"vst3", BENCH_VST3_BUNDLE});
    if (std::strlen(BENCH_VST3_STD_BUNDLE) > 0)
        bundles.push_back({"vst3-standard", BENCH_VST3_STD_BUNDLE});
    RegisterAll(bundles);
    if (std::strlen(BENCH_DEBIAN_VST3_BUNDLE) > 0) {
        const std::string path = BENCH_DEBIAN_VST3_BUNDLE;
        // Its first parameter, Attack, has the VST 3 identifier 3.
        benchmark::RegisterBenchmark("AutomationPoint/ZamComp-vst3-standard",
                                     [path](benchmark::State& state) { RunAutomationPoint(state, path, "3"); })
            ->Unit(benchmark::kNanosecond);
    }
    RegisterStateBenchmarks(BENCH_PROBE_BUNDLE);

    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    std::string error;
    if (!CloseSessions(error)) {
        std::fprintf(stderr, "bench_process: %s", error.c_str());
        return 1;
    }
    return 0;
}
