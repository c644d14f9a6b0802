// The real-time callback in the cases a real host cannot produce: missing
// wrappers, exceptions mid-batch, silence while a state loads. Bypass and
// normal rendering run end to end through aaxhost.
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

#include "AAXWrapper_AlgorithmProcess.h"
#include "AAXWrapper_Identity.h"
#include "AllocationProbe.h"
#include "CTestContext.h"
#include "WrapperFixture.h"

namespace {

constexpr float kUntouched = 7.0f;

// One algorithm instance with the wrapper pointer in its private data, as
// the instance-init callback leaves it.
struct Instance : TestSupport::CTestContext {
    explicit Instance(const AAXWrapper_Parameters* wrapper, int32_t samples = 32) : CTestContext(samples)
    {
        for (int c = 0; c < kInputs; ++c)
            for (int32_t s = 0; s < samples; ++s)
                Input(c)[static_cast<size_t>(s)] = static_cast<float>(c * 1000 + s);
        FillOutputs(kUntouched);
        std::memcpy(privateData.data(), &wrapper, sizeof(wrapper));
        mContext.mPrivateData = privateData.data();
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

void RunBatch(std::vector<S_Alg_Context*> batch)
{
    AAXWrapper_AlgorithmProcessFunction(batch.data(), batch.data() + batch.size());
}

using AlgorithmProcessTest = WrapperTest;

}  // namespace

// A null wrapper silences, no private data leaves the outputs alone (bypass
// still copies), an instance without a plug-in leaves them as given.
TEST_F(AlgorithmProcessTest, MissingWrapperPrivateDataOrPlugin)
{
    WithoutHost();
    auto hostless = MakeWrapper();
    Instance nullWrapper(nullptr), noPrivateData(nullptr), bypassedOrphan(nullptr), noPlugin(hostless.get());
    noPrivateData.mContext.mPrivateData = nullptr;
    bypassedOrphan.mContext.mPrivateData = nullptr;
    bypassedOrphan.mBypass = 1;
    RunBatch({nullWrapper.Context(), noPrivateData.Context(), bypassedOrphan.Context(), noPlugin.Context()});
    for (int c = 0; c < kAlgBypassChannels; ++c) {
        EXPECT_TRUE(nullWrapper.ChannelIs(c, 0.0f)) << "channel " << c;
        EXPECT_TRUE(noPrivateData.ChannelIs(c, kUntouched)) << "channel " << c;
        EXPECT_EQ(bypassedOrphan.Output(c), bypassedOrphan.Input(c)) << "channel " << c;
    }
    for (int c = 0; c < Instance::kOutputs; ++c)
        EXPECT_TRUE(noPlugin.ChannelIs(c, kUntouched)) << "channel " << c;
    EXPECT_TRUE(nullWrapper.ChannelIs(32, kUntouched));

    // An empty batch and a zero-length buffer do nothing.
    RunBatch({});
    Instance empty(nullptr, 16);
    empty.mBypass = 1;
    empty.mFrames = 0;
    RunBatch({empty.Context()});
    EXPECT_TRUE(empty.ChannelIs(0, kUntouched));
}

TEST_F(AlgorithmProcessTest, CExceptionStopsTheBatchWithOneErrorLine)
{
    auto first = MakeWrapper();
    auto second = MakeWrapper();
    auto third = MakeWrapper();
    Instance a(first.get()), b(second.get()), c(third.get());
    Script().throwAtCall = 2;
    RunBatch({a.Context(), b.Context(), c.Context()});
    EXPECT_EQ(Script().processedBy.size(), 2u) << "the third instance must not be processed";
    EXPECT_TRUE(a.ChannelIs(0, kUntouched)) << "the double writes nothing, so neither may the callback";
    EXPECT_EQ(mLog->Count("Exception in Process - plug-in failed in host"), 1u);
    EXPECT_EQ(mLog->Count("| error  | "), 1u);
}

TEST_F(AlgorithmProcessTest, StateRestoreSilencesUntilTheWrapperChunkIsApplied)
{
    auto wrapper = MakeWrapper();
    wrapper->EffectInit();
    Instance instance(wrapper.get());

    // Restoring the base's chunk alone leaves the flag set.
    uint32_t size = 0;
    ASSERT_EQ(wrapper->GetChunkSize(cDefaultChunkID, &size), AAX_SUCCESS);
    Chunk chunk(size);
    ASSERT_EQ(wrapper->GetChunk(cDefaultChunkID, chunk.get()), AAX_SUCCESS);
    wrapper->SetChunk(cDefaultChunkID, chunk.get());
    EXPECT_TRUE(wrapper->IsLoadingState());
    RunBatch({instance.Context()});
    EXPECT_TRUE(instance.ChannelIs(0, 0.0f));
    EXPECT_TRUE(instance.ChannelIs(31, 0.0f));
    EXPECT_TRUE(Script().processedBy.empty());

    Chunk ours(3);
    std::memcpy(ours.get()->fData, "abc", 3);
    EXPECT_EQ(wrapper->SetChunk(kProductID, ours.get()), AAX_SUCCESS);
    EXPECT_FALSE(wrapper->IsLoadingState());
    RunBatch({instance.Context()});
    EXPECT_EQ(Script().processedBy.size(), 1u);
}

TEST_F(AlgorithmProcessTest, NormalPathAllocatesNothing)
{
    auto wrapper = MakeWrapper();
    Instance processed(wrapper.get(), 64), bypassed(wrapper.get(), 64), silenced(nullptr, 64);
    bypassed.mBypass = 1;
    std::vector<S_Alg_Context*> batch{processed.Context(), bypassed.Context(), silenced.Context()};
    Script().processedBy.reserve(8);  // the double itself must not allocate either
    TestSupport::ExpectAllocationCounting();

    AAXHost::CAllocationScope allocations;
    for (int i = 0; i < 4; ++i)
        AAXWrapper_AlgorithmProcessFunction(batch.data(), batch.data() + batch.size());
    EXPECT_EQ(allocations.Allocations(), 0u);
    EXPECT_EQ(Script().processedBy.size(), 4u);
}

// One instance's teardown must not take the log from under another
// instance's audio thread: the last instance to go tears it down. Run under
// TSan in CI.
TEST_F(AlgorithmProcessTest, AnotherInstanceComingAndGoingNeverDisturbsTheLogOfOneThatProcesses)
{
    // The audio thread's lines only, at a pace the log's rings are made for
    // (a 10 KB ring per thread, drained five times a second).
    mLog.reset();
    mLog = std::make_unique<TestSupport::CLogCapture>(std::vector<std::string>{"process"});
    constexpr size_t kBuffers = 250;
    constexpr int kCycles = 1000;
    Script().logProcess = true;
    auto processing = MakeWrapper();
    Instance instance(processing.get());
    std::atomic<size_t> processed{0};
    std::thread audio([&] {
        for (size_t i = 0; i < kBuffers; ++i) {
            RunBatch({instance.Context()});
            processed = i + 1;
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
        }
    });
    int cycles = 0;
    while (cycles < kCycles || processed.load() < kBuffers) {
        MakeWrapper().reset();
        ++cycles;
    }
    audio.join();
    processing.reset();  // the last instance: its lines are drained now

    // Every buffer's line reached the log: none went to a torn-down or a
    // re-created, unconfigured one.
    EXPECT_GE(cycles, kCycles);
    EXPECT_EQ(mLog->Count("double host processed "), kBuffers);
}
