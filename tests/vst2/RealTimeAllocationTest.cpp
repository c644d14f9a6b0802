// The processing path must not allocate: every operator new in this binary is
// counted while Process runs with MIDI in, MIDI out, transport and a
// sample-rate change.
#include <gtest/gtest.h>

#include "AllocationCounter.h"
#include "Vst2TestSupport.h"

using namespace Vst2Test;

TEST(RealTimePath, ProcessAllocatesNothing)
{
    HostedPlugin hosted(TavrionPath());
    CTestContext ctx(128, 44100.0f);
    ctx.mTransport.mPlaying = true;
    hosted.host->Process(ctx.Block());

    size_t allocations = 0;
    for (int block = 0; block < 50; ++block) {
        ctx.mMidiIn.mPackets.clear();
        if (block % 5 == 0) {
            ctx.mMidiIn.mPackets.push_back(MidiPacket(3, {0x90, static_cast<unsigned char>(40 + block), 100}, true));
            ctx.mMidiIn.mPackets.push_back(MidiPacket(90, {0x80, static_cast<unsigned char>(40 + block), 0}));
        }
        const size_t before = TestSupport::HeapAllocationCount();
        if (block == 25)
            ctx.mSampleRate = 48000.0f;
        ctx.mTransport.mSamplePosition += 128;
        hosted.host->Process(ctx.Block());
        hosted.host->AddInputChangeForProcessing(1, 0.01 * block);
        allocations += TestSupport::HeapAllocationCount() - before;
    }
    EXPECT_EQ(allocations, 0u);
}
