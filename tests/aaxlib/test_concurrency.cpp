// Host threads may add and release references and mark packets dirty while
// the host's GenerateCoefficients dispatches. Run under TSan for the races;
// the counts below catch lost updates in any build.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "HostDoubles.h"
#include "TestEffect.h"

using aaxlib_test::HostController;
using aaxlib_test::TestEffect;

TEST(Concurrency, ReferenceCountsFromManyThreads)
{
    AAX_IEffectParameters* effect = TestEffect::Create();
    effect->AddRef();
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
        threads.emplace_back([effect] {
            for (int i = 0; i < 20000; ++i) {
                effect->AddRef();
                effect->Release();
            }
        });
    for (auto& th : threads) th.join();
    EXPECT_EQ(0u, effect->Release());
}

TEST(Concurrency, DirtyMarksWhileDispatching)
{
    HostController host;
    auto* effect = static_cast<TestEffect*>(TestEffect::Create());
    effect->AddRef();
    ASSERT_EQ(AAX_SUCCESS, effect->Initialize(static_cast<AAX_IACFController*>(&host)));
    effect->GenerateCoefficients();
    host.posts.clear();

    constexpr int kMarks = 20000;
    std::thread marker([effect] {
        for (int i = 0; i < kMarks; ++i) effect->Dispatcher().SetDirty("0", true);
    });
    for (int i = 0; i < kMarks; ++i) effect->GenerateCoefficients();
    marker.join();
    effect->GenerateCoefficients();  // whatever the last mark left dirty

    // Never more posts than marks, at least one, and nothing left dirty.
    EXPECT_GE(host.posts.size(), 1u);
    EXPECT_LE(host.posts.size(), static_cast<size_t>(kMarks));
    const size_t settled = host.posts.size();
    effect->GenerateCoefficients();
    EXPECT_EQ(settled, host.posts.size());
    for (const auto& post : host.posts) EXPECT_EQ(1, post.field);

    effect->Uninitialize();
    EXPECT_EQ(0u, effect->Release());
    EXPECT_EQ(0, host.counter.refs);
}
