// A "vst3" AAX bundle around our test instrument, loaded by aaxhost exactly
// as a host loads it, against the instrument driven directly.
#include <algorithm>

#include <gtest/gtest.h>

#include "DirectPlugin.h"
#include "TestSupport.h"

using namespace AAXHostTest;

namespace {

const std::string kBundle = std::string(VST3E2E_BUNDLE_DIR) + "/MrvTestSynth.aaxplugin";
constexpr int kBlock = 256;

struct SDirectNote {
    int64_t sample;  // absolute position
    bool on;
    uint8_t pitch;
    uint8_t velocity;
};

// The reference: the instrument hosted directly (CLASSIC start-up, as the
// bundle), each note placed in the block that holds it.
bool RenderDirect(const std::vector<SDirectNote>& notes, int64_t total, std::vector<float>& left,
                  std::vector<float>& right, std::string& error)
{
    auto plugin = AAXDirect::MakeDirectVst3Plugin();
    AAXDirect::SDirectSetup setup;
    setup.path = VST3_TEST_BUNDLE_DIR "/MrvTestSynth.vst3";
    setup.sampleRate = 44100.0;
    setup.maxBlock = kBlock;
    setup.standard = false;
    if (!plugin->Open(setup, error))
        return false;
    plugin->Start();
    left.assign(static_cast<size_t>(total), 0.0f);
    right.assign(static_cast<size_t>(total), 0.0f);
    std::vector<AAX_CMidiPacket> packets;
    AAXDirect::SDirectTransport transport;
    for (int64_t start = 0; start < total; start += kBlock) {
        const int n = static_cast<int>(std::min<int64_t>(kBlock, total - start));
        packets.clear();
        for (const SDirectNote& note : notes)
            if (note.sample >= start && note.sample < start + n) {
                AAX_CMidiPacket packet{};
                packet.mTimestamp = static_cast<uint32_t>(note.sample - start);
                packet.mLength = 3;
                packet.mData[0] = note.on ? 0x90 : 0x80;
                packet.mData[1] = note.pitch;
                packet.mData[2] = note.velocity;
                packets.push_back(packet);
            }
        transport.samplePosition = start;
        transport.quarterNotes = static_cast<double>(start) / 22050.0;
        plugin->Prepare(packets.data(), packets.size(), transport, n);
        plugin->Process(n);
        std::copy(plugin->Output(0), plugin->Output(0) + n, left.begin() + start);
        std::copy(plugin->Output(1), plugin->Output(1) + n, right.begin() + start);
    }
    return true;
}

}  // namespace

TEST(Vst3EndToEnd, RenderMatchesTheInstrumentDrivenDirectly)
{
    const std::string dir = TempDir("vst3_e2e_render");
    const std::string midi = dir + "/notes.mid";
    // At 120 BPM a quarter note is 22050 samples; 0.3 beats lands inside a block.
    WriteMidiFile(midi, {{0.0, 1.0, 60, 100}, {0.3, 0.9, 67, 90}, {1.2, 0.5, 72, 127}});
    const std::string out = dir + "/out.wav";
    const SRunResult run = RunHost({"render", kBundle, "--midi", midi, "--out", out, "--rate", "44100", "--block",
                                    std::to_string(kBlock), "--seconds", "1", "--no-progress"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    int rate = 0;
    const auto channels = ReadWavChannels(out, &rate);
    ASSERT_EQ(channels.size(), 2u);
    EXPECT_EQ(rate, 44100);

    const std::vector<SDirectNote> notes = {{0, true, 60, 100},     {6615, true, 67, 90},  {22050, false, 60, 0},
                                      {26460, true, 72, 127}, {26460, false, 67, 0}, {37485, false, 72, 0}};
    std::vector<float> left, right;
    std::string error;
    ASSERT_TRUE(RenderDirect(notes, static_cast<int64_t>(channels[0].size()), left, right, error)) << error;
    EXPECT_EQ(MaxDifference(channels[0], left), 0.0);
    EXPECT_EQ(MaxDifference(channels[1], right), 0.0);
    EXPECT_GT(Peak(channels[0]), 0.05);
}
