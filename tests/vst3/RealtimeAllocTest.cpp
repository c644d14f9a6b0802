// The real-time path allocates nothing: every heap allocation made while
// Process runs is counted, with MIDI, controllers and host changes in play.
#include <atomic>
#include <cstdlib>
#include <new>

#include "Vst3TestSupport.h"

namespace {
std::atomic<bool> gCounting{false};
std::atomic<long> gAllocations{0};
}  // namespace

// A replacement new/delete pair over malloc/free is what the standard
// allows; GCC cannot see that they belong together.
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"

void* operator new(std::size_t size)
{
    if (gCounting.load(std::memory_order_relaxed))
        gAllocations.fetch_add(1, std::memory_order_relaxed);
    if (void* p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

using namespace vst3test;

TEST(Vst3Realtime, ProcessDoesNotAllocate)
{
    CSingleton<CLog>::getInstance();  // no configuration: nothing is recorded
    CHostedPlugin plugin("MrvTestSynth");
    CTestBuffers buffers(256);
    buffers.mTransport.mPlaying = true;
    plugin.mHost->Process(buffers.Context());  // first call: setProcessing(true)

    for (int block = 0; block < 50; ++block) {
        buffers.mMidi.mPackets.clear();
        for (uint32_t i = 0; i < 40; ++i) {
            buffers.mMidi.Add(i * 6, static_cast<uint8_t>(0x90 | (i % 16)), static_cast<uint8_t>(40 + i), 100);
            buffers.mMidi.Add(i * 6 + 1, 0xB0, 7, static_cast<uint8_t>(i * 3));
            buffers.mMidi.Add(i * 6 + 2, 0xE0, static_cast<uint8_t>(i), 0x40);
            buffers.mMidi.Add(i * 6 + 3, 0xD0, static_cast<uint8_t>(i), 0);
            buffers.mMidi.Add(i * 6 + 4, 0x80, static_cast<uint8_t>(40 + i), 0);
        }
        buffers.mMidi.Add(250, 0xC0, 2, 0);
        buffers.mMidi.GetNodeBuffer();  // the host prepares its buffer before the callback
        plugin.mHost->AddInputChangeForProcessing(block % 6, 0.5);
        gAllocations = 0;
        gCounting = true;
        plugin.mHost->Process(buffers.Context());
        gCounting = false;
        ASSERT_EQ(gAllocations.load(), 0) << "block " << block;
    }
}
