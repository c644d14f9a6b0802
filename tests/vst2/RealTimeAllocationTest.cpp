// The processing path must not allocate: every heap allocation of the
// calling thread is counted while Process runs with MIDI in, MIDI out, transport and a
// sample-rate change.
#include <gtest/gtest.h>

#include "AllocationProbe.h"
#include "Vst2TestSupport.h"

using namespace Vst2Test;

TEST(RealTimePath, ProcessAllocatesNothing)
{
    TestSupport::ExpectAllocationCounting();
    HostedPlugin hosted(TavrionPath());
    CTestContext ctx(128, 44100.0f);
    ctx.mTransport.mPlaying = true;
    hosted.host->Process(ctx.Block());

    uint64_t allocations = 0;
    for (int block = 0; block < 50; ++block) {
        ctx.mMidiIn.mPackets.clear();
        if (block % 5 == 0) {
            ctx.mMidiIn.mPackets.push_back(MidiPacket(3, {0x90, static_cast<unsigned char>(40 + block), 100}, true));
            ctx.mMidiIn.mPackets.push_back(MidiPacket(90, {0x80, static_cast<unsigned char>(40 + block), 0}));
        }
        AAXHost::CAllocationScope scope;
        if (block == 25)
            ctx.mSampleRate = 48000.0f;
        ctx.mTransport.mSamplePosition += 128;
        hosted.host->Process(ctx.Block());
        hosted.host->AddInputChangeForProcessing(1, 0.01 * block);
        allocations += scope.Allocations();
    }
    EXPECT_EQ(allocations, 0u);
}
