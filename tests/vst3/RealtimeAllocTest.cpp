// The real-time path allocates nothing: every heap allocation made while
// Process runs is counted (the plug-in's own included), with MIDI, controllers and host changes in play.
#include "AllocationProbe.h"
#include "Vst3TestSupport.h"

using namespace vst3test;

TEST(Vst3Realtime, ProcessDoesNotAllocate)
{
    CSingleton<CLog>::getInstance();  // no configuration: nothing is recorded
    ExpectAllocationCounting();
    CHostedPlugin plugin("MrvTestSynth");
    CTestContext buffers(256);
    buffers.mTransport.mPlaying = true;
    plugin.mHost->Process(buffers.Block());  // first call: setProcessing(true)

    for (int block = 0; block < 50; ++block) {
        buffers.mMidiIn.mPackets.clear();
        for (uint32_t i = 0; i < 40; ++i) {
            buffers.mMidiIn.Add(i * 6, static_cast<uint8_t>(0x90 | (i % 16)), static_cast<uint8_t>(40 + i), 100);
            buffers.mMidiIn.Add(i * 6 + 1, 0xB0, 7, static_cast<uint8_t>(i * 3));
            buffers.mMidiIn.Add(i * 6 + 2, 0xE0, static_cast<uint8_t>(i), 0x40);
            buffers.mMidiIn.Add(i * 6 + 3, 0xD0, static_cast<uint8_t>(i), 0);
            buffers.mMidiIn.Add(i * 6 + 4, 0x80, static_cast<uint8_t>(40 + i), 0);
        }
        buffers.mMidiIn.Add(250, 0xC0, 2, 0);
        buffers.mMidiIn.GetNodeBuffer();  // the host prepares its buffer before the callback
        plugin.mHost->AddInputChangeForProcessing(block % 6, 0.5);
        AAXHost::CAllocationScope allocations;
        plugin.mHost->Process(buffers.Block());
        ASSERT_EQ(allocations.Allocations(), 0u) << "block " << block;
    }
}
