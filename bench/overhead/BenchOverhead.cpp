// What the wrapper costs: each plug-in hosted directly and through its
// bundle in the same run, outputs compared, per-buffer cost of both sides.
//   bench_overhead [--instructions] [Google Benchmark flags]
// --instructions counts instructions (a hardware counter, or callgrind when
// the program runs under it) instead of time.
#include <benchmark/benchmark.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "BenchRig.h"
#include "InstructionCounter.h"
#include "OverheadCase.h"
#include "OverheadTable.h"

namespace BenchOverhead {

namespace {

std::vector<SPluginUnderTest> Plugins()
{
    std::vector<SPluginUnderTest> plugins;
    plugins.push_back({"TavrionV2", BENCH_TAVRION_BUNDLE, BENCH_TAVRION_LIBRARY, false, false, ""});
    if (std::strlen(BENCH_VST3_BUNDLE) > 0)
        plugins.push_back({"MrvTestSynth-vst3", BENCH_VST3_BUNDLE, BENCH_VST3_MODULE, true, true, ""});
    if (std::strlen(BENCH_AMSYNTH_BUNDLE) > 0)
        plugins.push_back({"amsynth", BENCH_AMSYNTH_BUNDLE, BENCH_AMSYNTH_LIBRARY, false, true, ""});
    if (std::strlen(BENCH_KARS_BUNDLE) > 0)
        plugins.push_back({"Kars", BENCH_KARS_BUNDLE, BENCH_KARS_LIBRARY, false, true,
                           "Kars plucks every string with fresh noise"});
    return plugins;
}

std::vector<SCaseRow>& Rows()
{
    static std::vector<SCaseRow> rows;
    return rows;
}

CInstructionCounter* gCounter = nullptr;

void RunOne(benchmark::State& state, SCase which)
{
    SCaseResult result;
    for (auto _ : state)
        result = RunCase(which, gCounter);
    Rows().push_back({which, result});
    if (!result.ok) {
        state.SkipWithError(result.error.c_str());
        return;
    }
    state.counters["direct"] = result.direct;
    state.counters["wrapped"] = result.wrapped;
    state.counters["overhead"] = (result.wrapped - result.direct) / which.instances;
    state.counters["ratio"] = result.direct > 0.0 ? result.wrapped / result.direct : 0.0;
    state.SetLabel(result.outputs);
}

}  // namespace

}  // namespace BenchOverhead

int main(int argc, char** argv)
{
    using namespace BenchOverhead;
    bool instructions = false;
    std::vector<char*> args;
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "--instructions") == 0)
            instructions = true;
        else
            args.push_back(argv[i]);
    }
    int count = static_cast<int>(args.size());

    CInstructionCounter counter;
    if (instructions) {
        std::string error;
        if (!counter.Open(error)) {
            std::fprintf(stderr, "bench_overhead: %s\n", error.c_str());
            return 1;
        }
        gCounter = &counter;
    }

    static const std::vector<SPluginUnderTest> plugins = Plugins();
    for (const SPluginUnderTest& plugin : plugins)
        for (int instances : {1, 64})
            for (int block : {64, 256})
                for (bool chords : {false, true}) {
                    SCase which{&plugin, chords, block, instances};
                    benchmark::RegisterBenchmark(("Overhead/" + which.Name()).c_str(),
                                                 [which](benchmark::State& state) { RunOne(state, which); })
                        ->Iterations(1)
                        ->Unit(benchmark::kMillisecond);
                }

    benchmark::Initialize(&count, args.data());
    if (benchmark::ReportUnrecognizedArguments(count, args.data()))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();

    const bool ok = PrintOverheadTable(stdout, Rows(), instructions ? "instructions" : "ns",
                                       instructions ? counter.Source() : "steady clock, quickest of 9 rounds");
    std::string error;
    if (!BenchProcess::CloseSessions(error)) {
        std::fprintf(stderr, "bench_overhead: %s", error.c_str());
        return 1;
    }
    return ok ? 0 : 1;
}
