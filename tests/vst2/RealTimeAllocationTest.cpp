// The processing path must not allocate: every operator new in this binary is
// counted while Process runs with MIDI in, MIDI out, transport and a
// sample-rate change.
#include <gtest/gtest.h>

#include <atomic>
#include <cstdlib>
#include <new>

#include "Vst2TestSupport.h"

namespace {
std::atomic<bool> gCounting{false};
std::atomic<int> gAllocations{0};
}  // namespace

// The replacements pair malloc with free; the compiler only sees new and free.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmismatched-new-delete"
void* operator new(std::size_t size)
{
    if (gCounting.load(std::memory_order_relaxed))
        gAllocations.fetch_add(1, std::memory_order_relaxed);
    if (void* block = std::malloc(size == 0 ? 1 : size))
        return block;
    throw std::bad_alloc();
}
void operator delete(void* block) noexcept { std::free(block); }
void operator delete(void* block, std::size_t) noexcept { std::free(block); }
#pragma GCC diagnostic pop

using namespace Vst2Test;

TEST(RealTimePath, ProcessAllocatesNothing)
{
    HostedPlugin hosted(TavrionPath());
    CTestContext ctx(128, 44100.0f);
    ctx.transport.playing = true;
    hosted.host->Process(&ctx.context);

    gAllocations = 0;
    for (int block = 0; block < 50; ++block) {
        gCounting = false;
        ctx.midiIn.incoming.clear();
        if (block % 5 == 0) {
            ctx.midiIn.incoming.push_back(Packet(3, {0x90, static_cast<unsigned char>(40 + block), 100}, true));
            ctx.midiIn.incoming.push_back(Packet(90, {0x80, static_cast<unsigned char>(40 + block), 0}));
        }
        gCounting = true;
        if (block == 25)
            ctx.sampleRate = 48000.0f;
        ctx.transport.sampleLocation += 128;
        hosted.host->Process(&ctx.context);
        hosted.host->AddInputChangeForProcessing(1, 0.01 * block);
        gCounting = false;
    }
    gCounting = false;
    EXPECT_EQ(gAllocations.load(), 0);
}
