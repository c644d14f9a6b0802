// A reverb-like feedback path (eight one-pole loops) run on one buffer of
// 512 samples: once in its decay, where every state is a denormal, once on a
// signal of normal level. Without the scope the decay costs many times the
// normal case on x86; inside CDenormalScope, as STANDARD hosts call a
// plug-in, both cost the same.
#include <benchmark/benchmark.h>

#include <array>
#include <cfloat>

#include "fakehost/DenormalScope.h"

namespace {

constexpr int kFrames = 512;
constexpr int kLoops = 8;

struct SFeedback {
    std::array<float, kLoops> state{};
    void Run(const float* in, float* out)
    {
        for (int s = 0; s < kFrames; ++s) {
            float sum = 0.0f;
            for (int k = 0; k < kLoops; ++k) {
                state[static_cast<size_t>(k)] = state[static_cast<size_t>(k)] * 0.9f + in[s] * 0.01f;
                sum += state[static_cast<size_t>(k)];
            }
            out[s] = sum;
        }
    }
};

void Run(benchmark::State& st, bool denormal, bool flush)
{
    std::array<float, kFrames> in{}, out{};
    // A normal signal keeps the states near 1; the last trace of a decay
    // keeps them in the denormal range for good.
    in.fill(denormal ? FLT_MIN * 0.5f : 1.0f);
    SFeedback loop;
    if (denormal)
        loop.state.fill(FLT_MIN * 0.5f);
    for (auto _ : st) {
        const CDenormalScope scope(flush);
        loop.Run(in.data(), out.data());
        benchmark::DoNotOptimize(out.data());
    }
    st.SetItemsProcessed(st.iterations() * kFrames);
}

void BM_DecayUnflushed(benchmark::State& st) { Run(st, true, false); }
void BM_DecayFlushed(benchmark::State& st) { Run(st, true, true); }
void BM_NormalUnflushed(benchmark::State& st) { Run(st, false, false); }
void BM_NormalFlushed(benchmark::State& st) { Run(st, false, true); }

}  // namespace

BENCHMARK(BM_DecayUnflushed);
BENCHMARK(BM_DecayFlushed);
BENCHMARK(BM_NormalUnflushed);
BENCHMARK(BM_NormalFlushed);
