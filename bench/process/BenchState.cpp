// Main-thread figures of the wrapper: saving and restoring a large plug-in
// state (the probe made to carry 16 MiB), and creating an instance of a
// plug-in with 10,000 parameters (EffectInit publishes each one).
#include "BenchState.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "BenchRig.h"
#include "HostInstance.h"
#include "PluginSession.h"

namespace BenchProcess {

namespace {

constexpr long kStateBytes = 16L << 20;
constexpr int kManyParameters = 10000;

// A chunk record with room for `bytes` of data, as a host allocates it.
struct SChunkBuffer {
    explicit SChunkBuffer(size_t bytes) : storage((sizeof(AAX_SPlugInChunkHeader) + bytes + 8) / 8 + 1) {}
    AAX_SPlugInChunk* Chunk() { return reinterpret_cast<AAX_SPlugInChunk*>(storage.data()); }
    std::vector<uint64_t> storage;
};

// The probe's environment options last as long as the benchmark.
struct SScopedOption {
    SScopedOption(const char* name, long value) : mName(name) { setenv(name, std::to_string(value).c_str(), 1); }
    ~SScopedOption() { unsetenv(mName); }
    const char* mName;
};

void RunStateTransfer(benchmark::State& state, const std::string& bundlePath, bool restore)
{
    const SScopedOption pad("VST2PROBE_CHUNK_PAD", kStateBytes);
    CBenchRig rig;
    std::string error;
    if (!rig.Open(bundlePath, 256, 1, error)) {
        state.SkipWithError(error.c_str());
        return;
    }
    AAX_IACFEffectParameters* effect = rig.Effect(0);
    const AAX_CTypeID chunkID = BENCH_PROBE_CHUNK_ID;
    uint32_t size = 0;
    if (effect->GetChunkSize(chunkID, &size) != AAX_SUCCESS || size < kStateBytes) {
        state.SkipWithError("the probe's chunk is not as large as asked");
        return;
    }
    SChunkBuffer buffer(size);
    AAX_SPlugInChunk* chunk = buffer.Chunk();
    chunk->fSize = static_cast<int32_t>(size);
    effect->GetChunk(chunkID, chunk);
    for (auto _ : state) {
        if (restore) {
            effect->SetChunk(chunkID, chunk);
        } else {
            effect->GetChunkSize(chunkID, &size);
            chunk->fSize = static_cast<int32_t>(size);
            effect->GetChunk(chunkID, chunk);
        }
        benchmark::DoNotOptimize(chunk->fData[size / 2]);
    }
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * chunk->fSize);
    state.counters["state_mib"] = static_cast<double>(chunk->fSize) / (1 << 20);
    if (restore)
        state.SetLabel("the host's block is handed to the plug-in, not copied");
}

// Instance creation and initialisation (EffectInit) of a plug-in with
// 10,000 parameters; the teardown is not timed.
void RunManyParameterInit(benchmark::State& state, const std::string& bundlePath)
{
    const SScopedOption extra("VST2PROBE_EXTRA_PARAMS", kManyParameters - 4);
    std::string error;
    AAXHost::CPluginSession* session = OpenSession(bundlePath, error);
    const AAXHost::SEffectInfo* effect = session ? session->FindEffect("", error) : nullptr;
    const AAXHost::SComponentInfo* component = effect ? AAXHost::FindProcessingComponent(*effect) : nullptr;
    if (!component) {
        state.SkipWithError(error.empty() ? "no process procedure" : error.c_str());
        return;
    }
    AAXHost::SInstanceConfig config;
    config.sampleRate = kSampleRate;
    AAXHost::STransportState transport;
    int32_t published = 0;
    for (auto _ : state) {
        CQuietStdout quiet;
        AAXHost::CHostInstance instance(*effect, *component, config, transport);
        const auto started = std::chrono::steady_clock::now();
        const bool created = instance.Create(error);
        state.SetIterationTime(std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count());
        if (!created) {
            state.SkipWithError(error.c_str());
            return;
        }
        instance.Effect()->GetNumberOfParameters(&published);
        instance.Destroy();
    }
    state.counters["parameters"] = published;
}

}  // namespace

void RegisterStateBenchmarks(const std::string& probeBundle)
{
    benchmark::RegisterBenchmark("State/GetChunk/16MiB", [probeBundle](benchmark::State& state) {
        RunStateTransfer(state, probeBundle, false);
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("State/SetChunk/16MiB", [probeBundle](benchmark::State& state) {
        RunStateTransfer(state, probeBundle, true);
    })->Unit(benchmark::kMillisecond);
    benchmark::RegisterBenchmark("EffectInit/parameters:10000", [probeBundle](benchmark::State& state) {
        RunManyParameterInit(state, probeBundle);
    })->UseManualTime()->Iterations(5)->Unit(benchmark::kMillisecond);
}

}  // namespace BenchProcess
