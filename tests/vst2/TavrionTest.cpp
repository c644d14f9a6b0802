// Tavrion V2 hosted by the VST 2 fake host: description, deterministic sound,
// stems per MIDI channel, bank chunk round trip and validation.
#include <gtest/gtest.h>

#include <cmath>
#include <cstring>

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
        host.Process(ctx.Context());
        for (int c = 0; c < CTestContext::kOutputs; ++c)
            channels[c].insert(channels[c].end(), ctx.Output(c).begin(), ctx.Output(c).end());
    }
    return channels;
}

float Peak(const std::vector<float>& samples)
{
    float peak = 0.0f;
    for (float s : samples)
        peak = std::max(peak, std::fabs(s));
    return peak;
}

}  // namespace

TEST(Tavrion, DescribesItselfThroughTheFakeHost)
{
    HostedPlugin hosted(TavrionPath());
    CFakeHostVST2& host = *hosted.host;
    ASSERT_NE(host.GetEffect(), nullptr);
    EXPECT_EQ(host.GetPluginVendor(), "Morvane");
    EXPECT_EQ(host.GetPluginVersion(), "V1.1.0");
    EXPECT_EQ(host.GetPluginProductUniqueID(), 0x54765632);
    ASSERT_EQ(host.GetParameterCount(), 6);
    const char* names[] = {"Volume", "Cutoff", "Attack", "Release", "Sustain", "Waveform"};
    for (int i = 0; i < 6; ++i) {
        std::string name;
        float value = -1.0f;
        EXPECT_TRUE(host.GetParameterInfo(i, name, value));
        EXPECT_EQ(name, names[i]);
        EXPECT_GE(value, 0.0f);
        EXPECT_LE(value, 1.0f);
    }
    CTestViewContainer view;
    host.CreateGUI(&view);
    host.TimerWakeup();
    ASSERT_EQ(view.mSizes.size(), 1u);
    EXPECT_EQ(view.mSizes[0].horz, 400.0f);
    EXPECT_EQ(view.mSizes[0].vert, 240.0f);
}

TEST(Tavrion, RendersDeterministicallyWithStemsPerMidiChannel)
{
    const std::vector<AAX_CMidiPacket> notes = {MidiPacket(10, {0x90, 60, 100}), MidiPacket(10, {0x93, 67, 127}),
                                                MidiPacket(200, {0x80, 60, 0})};
    HostedPlugin first(TavrionPath());
    HostedPlugin second(TavrionPath());
    const auto a = Render(*first.host, notes, 8);
    const auto b = Render(*second.host, notes, 8);
    EXPECT_EQ(a, b);

    // Silent before the first note's offset, sounding after.
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(a[0][i], 0.0f);
    EXPECT_GT(Peak(a[0]), 0.01f);
    EXPECT_EQ(a[0], a[1]);
    // Channel 1 -> stem 0 (outputs 2, 3); channel 4 -> stem 3 (outputs 8, 9).
    EXPECT_GT(Peak(a[2]), 0.0f);
    EXPECT_GT(Peak(a[8]), 0.0f);
    for (int c = 4; c < CTestContext::kOutputs; ++c) {
        if (c != 8 && c != 9) {
            EXPECT_EQ(Peak(a[c]), 0.0f) << "output " << c;
        }
    }
    // The main mix is the sum of the stems.
    for (size_t i = 0; i < a[0].size(); ++i)
        ASSERT_NEAR(a[0][i], a[2][i] + a[8][i], 1e-6f) << i;
}

TEST(Tavrion, BankChunkRoundTripsThroughAFreshInstance)
{
    HostedPlugin source(TavrionPath());
    source.host->AddInputChangeForProcessing(1, 0.2);
    source.host->AddInputChangeForProcessing(5, 1.0);
    unsigned int size = 0;
    source.host->GetState(&size, nullptr);
    ASSERT_EQ(size, 12u + 4u * 6u + CFakeHostVST2::kStateMargin);
    std::vector<unsigned char> state(size);
    source.host->GetState(&size, state.data());

    HostedPlugin restored(TavrionPath());
    restored.host->SetState(size, state.data());
    std::string name;
    float value = -1.0f;
    restored.host->GetParameterInfo(1, name, value);
    EXPECT_FLOAT_EQ(value, 0.2f);
    restored.host->GetParameterInfo(5, name, value);
    EXPECT_FLOAT_EQ(value, 1.0f);

    const std::vector<AAX_CMidiPacket> note = {MidiPacket(0, {0x90, 48, 90})};
    EXPECT_EQ(Render(*source.host, note, 4), Render(*restored.host, note, 4));
}

TEST(Tavrion, DamagedBankChunksAreRefusedWhole)
{
    HostedPlugin source(TavrionPath());
    unsigned int size = 0;
    source.host->GetState(&size, nullptr);
    std::vector<unsigned char> good(size);
    source.host->GetState(&size, good.data());
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
        target.host->SetState(size, bytes.data());
        // A truncated chunk: the whole size minus one byte of the chunk.
        target.host->SetState(static_cast<unsigned int>(chunkSize - 1 + margin), good.data());
        std::string name;
        float value = -1.0f;
        target.host->GetParameterInfo(1, name, value);
        EXPECT_FLOAT_EQ(value, 0.33f) << "case " << i;
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
