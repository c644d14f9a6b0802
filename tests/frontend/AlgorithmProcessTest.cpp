// The real-time callback: bypass, silence, per-instance processing and the
// exception path, driven with context records laid out as the host lays them.
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <thread>
#include <cstring>
#include <vector>

#include "AAXWrapper_AlgorithmProcess.h"
#include "AAXWrapper_Identity.h"
#include "AllocationCounter.h"
#include "CTestContext.h"
#include "WrapperFixture.h"

namespace {

constexpr float kUntouched = 7.0f;

// One algorithm instance: its buffers and the nine fields, with the wrapper
// pointer in the private data as the instance-init callback leaves it.
struct Instance : TestSupport::CTestContext {
    explicit Instance(int32_t samples) : CTestContext(samples)
    {
        for (int c = 0; c < kInputs; ++c)
            for (int32_t s = 0; s < samples; ++s)
                Input(c)[static_cast<size_t>(s)] = static_cast<float>(c * 1000 + s);
        FillOutputs(kUntouched);
        mContext.mPrivateData = privateData.data();
    }
    void HoldWrapper(const AAXWrapper_Parameters* wrapper)
    {
        std::memcpy(privateData.data(), &wrapper, sizeof(wrapper));
    }
    bool ChannelIs(int channel, float value) const
    {
        for (float sample : Output(channel))
            if (sample != value)
                return false;
        return true;
    }

    std::array<unsigned char, 8> privateData{};
};

void RunBatch(std::vector<S_Alg_Context*>& batch)
{
    AAXWrapper_AlgorithmProcessFunction(batch.data(), batch.data() + batch.size());
}

using AlgorithmProcessTest = WrapperTest;

}  // namespace

TEST_F(AlgorithmProcessTest, BypassCopiesTheFirst32ChannelsWhateverTheWrapperState)
{
    auto wrapper = MakeWrapper();
    Instance instance(64);
    instance.mBypass = 1;
    instance.HoldWrapper(wrapper.get());
    std::vector<S_Alg_Context*> batch{instance.Context()};
    RunBatch(batch);

    for (int c = 0; c < kAlgBypassChannels; ++c)
        EXPECT_EQ(instance.Output(c), instance.Input(c)) << "channel " << c;
    EXPECT_TRUE(instance.ChannelIs(32, kUntouched));
    EXPECT_TRUE(instance.ChannelIs(33, kUntouched));
    EXPECT_TRUE(Script().processedBy.empty()) << "bypass must not reach the plug-in";

    // Bypass wins over a missing wrapper too.
    Instance orphan(64);
    orphan.mBypass = 1;
    orphan.mContext.mPrivateData = nullptr;
    std::vector<S_Alg_Context*> orphanBatch{orphan.Context()};
    RunBatch(orphanBatch);
    EXPECT_EQ(orphan.Output(31), orphan.Input(31));
}

TEST_F(AlgorithmProcessTest, MissingWrapperSilencesAndMissingPrivateDataLeavesOutputs)
{
    Instance nullWrapper(64);
    nullWrapper.HoldWrapper(nullptr);
    Instance noPrivateData(64);
    noPrivateData.mContext.mPrivateData = nullptr;
    std::vector<S_Alg_Context*> batch{nullWrapper.Context(), noPrivateData.Context()};
    RunBatch(batch);

    for (int c = 0; c < kAlgBypassChannels; ++c) {
        EXPECT_TRUE(nullWrapper.ChannelIs(c, 0.0f)) << "channel " << c;
        EXPECT_TRUE(noPrivateData.ChannelIs(c, kUntouched)) << "channel " << c;
    }
    EXPECT_TRUE(nullWrapper.ChannelIs(32, kUntouched));
}

TEST_F(AlgorithmProcessTest, EmptyBatchAndZeroLengthDoNothing)
{
    Instance instance(16);
    std::vector<S_Alg_Context*> empty;
    AAXWrapper_AlgorithmProcessFunction(empty.data(), empty.data());
    instance.mBypass = 1;
    instance.mFrames = 0;
    std::vector<S_Alg_Context*> batch{instance.Context()};
    RunBatch(batch);
    EXPECT_TRUE(instance.ChannelIs(0, kUntouched));
}

TEST_F(AlgorithmProcessTest, WithoutFakeHostOutputsStayAsTheHostGaveThem)
{
    WithoutHost();
    auto wrapper = MakeWrapper();
    Instance instance(32);
    instance.HoldWrapper(wrapper.get());
    std::vector<S_Alg_Context*> batch{instance.Context()};
    RunBatch(batch);
    for (int c = 0; c < Instance::kOutputs; ++c)
        EXPECT_TRUE(instance.ChannelIs(c, kUntouched)) << "channel " << c;
}

TEST_F(AlgorithmProcessTest, CExceptionStopsTheBatchWithOneErrorLine)
{
    auto first = MakeWrapper();
    auto second = MakeWrapper();
    auto third = MakeWrapper();
    Instance a(32), b(32), c(32);
    a.HoldWrapper(first.get());
    b.HoldWrapper(second.get());
    c.HoldWrapper(third.get());
    std::vector<S_Alg_Context*> batch{a.Context(), b.Context(), c.Context()};

    Script().throwAtCall = 2;
    RunBatch(batch);
    EXPECT_EQ(Script().processedBy.size(), 2u) << "the third instance must not be processed";
    EXPECT_TRUE(a.ChannelIs(0, kUntouched)) << "the double writes nothing, so neither may the callback";
    const auto lines = mLog->Find("process", "error", "Exception in Process - plug-in failed in host");
    EXPECT_EQ(lines.size(), 1u);
    EXPECT_EQ(mLog->Find("process", "error", "").size(), 1u);
}

TEST_F(AlgorithmProcessTest, StateRestoreSilencesUntilTheWrapperChunkIsApplied)
{
    auto wrapper = MakeWrapper();
    wrapper->EffectInit();
    Instance instance(32);
    instance.HoldWrapper(wrapper.get());
    std::vector<S_Alg_Context*> batch{instance.Context()};

    // Restoring the base's chunk alone leaves the flag set.
    uint32_t size = 0;
    ASSERT_EQ(wrapper->GetChunkSize(cDefaultChunkID, &size), AAX_SUCCESS);
    std::vector<char> block(sizeof(AAX_SPlugInChunk) + size);
    auto* chunk = reinterpret_cast<AAX_SPlugInChunk*>(block.data());
    chunk->fSize = static_cast<int32_t>(size);
    ASSERT_EQ(wrapper->GetChunk(cDefaultChunkID, chunk), AAX_SUCCESS);
    wrapper->SetChunk(cDefaultChunkID, chunk);
    EXPECT_TRUE(wrapper->IsLoadingState());
    RunBatch(batch);
    EXPECT_TRUE(instance.ChannelIs(0, 0.0f));
    EXPECT_TRUE(instance.ChannelIs(31, 0.0f));
    EXPECT_TRUE(Script().processedBy.empty());

    std::vector<char> ours(sizeof(AAX_SPlugInChunk) + 3);
    auto* wrapperChunk = reinterpret_cast<AAX_SPlugInChunk*>(ours.data());
    wrapperChunk->fSize = 3;
    std::memcpy(wrapperChunk->fData, "abc", 3);
    EXPECT_EQ(wrapper->SetChunk(kProductID, wrapperChunk), AAX_SUCCESS);
    EXPECT_FALSE(wrapper->IsLoadingState());
    RunBatch(batch);
    EXPECT_EQ(Script().processedBy.size(), 1u);
}

TEST_F(AlgorithmProcessTest, NormalPathAllocatesNothing)
{
    auto wrapper = MakeWrapper();
    Instance processed(64), bypassed(64), silenced(64);
    processed.HoldWrapper(wrapper.get());
    bypassed.HoldWrapper(wrapper.get());
    bypassed.mBypass = 1;
    silenced.HoldWrapper(nullptr);
    std::vector<S_Alg_Context*> batch{processed.Context(), bypassed.Context(), silenced.Context()};
    Script().processedBy.reserve(8);  // the double itself must not allocate either

    const size_t before = TestSupport::HeapAllocationCount();
    for (int i = 0; i < 4; ++i)
        RunBatch(batch);
    EXPECT_EQ(TestSupport::HeapAllocationCount(), before);
    EXPECT_EQ(Script().processedBy.size(), 4u);
}

// Run under TSan: the callback reads the restore flag while SetChunk flips it.
TEST_F(AlgorithmProcessTest, StateRestoreMayRunBesideTheCallback)
{
    auto wrapper = MakeWrapper();
    Instance instance(32);
    instance.HoldWrapper(wrapper.get());
    std::vector<S_Alg_Context*> batch{instance.Context()};
    std::atomic<bool> stop{false};
    std::thread audio([&] {
        while (!stop.load())
            RunBatch(batch);
    });
    std::vector<char> block(sizeof(AAX_SPlugInChunk) + 4);
    auto* chunk = reinterpret_cast<AAX_SPlugInChunk*>(block.data());
    chunk->fSize = 4;
    for (int i = 0; i < 200; ++i)
        EXPECT_EQ(wrapper->SetChunk(kProductID, chunk), AAX_SUCCESS);
    stop.store(true);
    audio.join();
    EXPECT_FALSE(wrapper->IsLoadingState());
}
