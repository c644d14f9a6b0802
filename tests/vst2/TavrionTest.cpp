// Tavrion V2 hosted by the VST 2 fake host: damaged bank chunks, events
// out of order within a block, and a processing path that allocates nothing.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

#include "AllocationProbe.h"
#include "Vst2TestSupport.h"

using namespace Vst2Test;

namespace {

// Renders `blocks` blocks after sending `packets` in the first one.
std::vector<std::vector<float>> Render(CFakeHostVST2& host, const std::vector<AAX_CMidiPacket>& packets, int blocks,
                                       int frames = 256)
{
    CTestContext ctx(frames, 48000.0f);
    std::vector<std::vector<float>> channels(CTestContext::kOutputs);
    for (int b = 0; b < blocks; ++b) {
        ctx.mMidiIn.mPackets = b == 0 ? packets : std::vector<AAX_CMidiPacket>{};
        ctx.SetFrames(frames);
        host.Process(ctx.Block());
        for (int c = 0; c < CTestContext::kOutputs; ++c)
            channels[c].insert(channels[c].end(), ctx.Output(c).begin(), ctx.Output(c).end());
    }
    return channels;
}

}  // namespace

TEST(Tavrion, DamagedBankChunksAreRefusedWhole)
{
    HostedPlugin source(TavrionPath());
    const SPluginState state = source.host->GetState();
    const std::vector<unsigned char> good(state.bytes.begin(), state.bytes.end());
    const auto size = static_cast<uint32_t>(good.size());
    const unsigned int margin = CFakeHostVST2::kStateMargin;
    const size_t chunkSize = size - margin;

    auto corrupted = [&](auto change) {
        std::vector<unsigned char> bytes = good;
        change(bytes);
        return bytes;
    };
    const float nan = std::nanf("");
    const float tooLarge = 1.5f;
    const std::vector<std::vector<unsigned char>> bad = {
        corrupted([](auto& b) { b[0] = 'X'; }),                                  // magic
        corrupted([](auto& b) { b[4] = 2; }),                                    // later format version
        corrupted([](auto& b) { b[8] = 200; }),                                  // count disagrees with size
        corrupted([&](auto& b) { std::memcpy(&b[12 + 4], &nan, 4); }),           // not a number
        corrupted([&](auto& b) { std::memcpy(&b[12 + 8], &tooLarge, 4); }),      // out of range
    };
    for (size_t i = 0; i < bad.size(); ++i) {
        HostedPlugin target(TavrionPath());
        target.host->AddInputChangeForProcessing(1, 0.33);
        std::vector<unsigned char> bytes = bad[i];
        target.host->SetState(bytes.data(), size);
        // A truncated chunk: the whole size minus one byte of the chunk.
        target.host->SetState(good.data(), static_cast<uint32_t>(chunkSize - 1 + margin));
        EXPECT_FLOAT_EQ(static_cast<float>(target.host->GetParameterValue(1).value_or(-1.0)), 0.33f) << "case " << i;
    }
}

TEST(Tavrion, EventsOutOfOrderWithinABlockPlayAtTheirOffsets)
{
    HostedPlugin ordered(TavrionPath());
    HostedPlugin shuffled(TavrionPath());
    const auto a = Render(*ordered.host,
                          {MidiPacket(10, {0x90, 60, 100}), MidiPacket(100, {0x90, 64, 100}), MidiPacket(150, {0x80, 60, 0})}, 3);
    const auto b = Render(*shuffled.host,
                          {MidiPacket(150, {0x80, 60, 0}), MidiPacket(100, {0x90, 64, 100}), MidiPacket(10, {0x90, 60, 100})}, 3);
    EXPECT_EQ(a[0], b[0]);
}

// Every heap allocation of the calling thread is counted while Process runs
// with MIDI in, MIDI out, transport and a sample-rate change.
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
