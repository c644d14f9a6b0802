// The state block: its layout, its round trip into a fresh instance, and
// blocks that are cut short or lie about their lengths.
#include <cstring>

#include "Vst3TestSupport.h"

using namespace vst3test;

namespace {

std::vector<unsigned char> SaveState(CFakeHostVST3& host)
{
    unsigned int size = 0;
    host.GetState(&size, nullptr);
    std::vector<unsigned char> block(size, 0xEE);
    unsigned int size2 = 0;
    host.GetState(&size2, block.data());
    EXPECT_EQ(size, size2);
    return block;
}

uint32_t ReadU32(const std::vector<unsigned char>& block, size_t offset)
{
    uint32_t v = 0;
    std::memcpy(&v, block.data() + offset, 4);
    return v;
}

}  // namespace

TEST(Vst3State, BlockLayoutAndReportedSize)
{
    CHostedPlugin plugin("MrvTestSynth");
    plugin.mHost->AddInputChangeForProcessing(0, 0.5);
    CTestContext buffers(32);
    plugin.mHost->Process(buffers.Context());

    const auto block = SaveState(*plugin.mHost);
    const uint32_t componentSize = ReadU32(block, 0);
    EXPECT_EQ(componentSize, 4u + 6u * 8u);  // version + six doubles
    const uint32_t controllerSize = ReadU32(block, 4 + componentSize);
    EXPECT_EQ(controllerSize, 8u);
    EXPECT_EQ(block.size(), componentSize + controllerSize + 60u);
    int32_t version = 0;
    std::memcpy(&version, block.data() + 4, 4);
    EXPECT_EQ(version, 1);
    double volume = 0;
    std::memcpy(&volume, block.data() + 8, 8);
    EXPECT_EQ(volume, 0.5);
    // Bytes after the two states are not written.
    for (size_t i = 8 + componentSize + controllerSize; i < block.size(); ++i)
        ASSERT_EQ(block[i], 0xEE) << i;
}

TEST(Vst3State, RoundTripIntoFreshInstanceInOrder)
{
    std::vector<unsigned char> block;
    {
        CHostedPlugin source("MrvTestSynth");
        source.mHost->AddInputChangeForProcessing(0, 0.125);
        source.mHost->AddInputChangeForProcessing(3, 5.0 / 7.0);
        source.mHost->AddInputChangeForGUI(4, 0.5);  // the controller's own state follows it
        CTestContext buffers(32);
        source.mHost->Process(buffers.Context());
        block = SaveState(*source.mHost);
    }
    CTrace trace;
    CHostedPlugin target("MrvTestSynth");
    trace.Clear();
    target.mHost->SetState(static_cast<unsigned int>(block.size()), block.data());
    const auto lines = trace.Lines();
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(lines[0], "proc.setState volume=0.125000 program=0.714286");
    EXPECT_EQ(lines[1], "ctrl.setComponentState volume=0.125000 program=0.714286");
    EXPECT_EQ(lines[2], "ctrl.setState zoom=1.500");
    EXPECT_EQ(SaveState(*target.mHost), block);
}

TEST(Vst3State, CombinedObjectWritesBothHalves)
{
    // One object answers both getState calls: the same gain twice.
    CHostedPlugin plugin("MrvTestSingle");
    const auto block = SaveState(*plugin.mHost);
    EXPECT_EQ(ReadU32(block, 0), 8u);
    EXPECT_EQ(ReadU32(block, 12), 8u);
    EXPECT_EQ(block.size(), 76u);
}

// Registered in CTest as vst3.state_cut_every_length.
TEST(Vst3StateBadInput, CutEveryLength)
{
    CLogCapture log;
    CHostedPlugin source("MrvTestSynth");
    auto block = SaveState(*source.mHost);
    const size_t used = 8 + ReadU32(block, 0) + ReadU32(block, 4 + ReadU32(block, 0));
    CTrace trace;
    for (size_t cut = 0; cut < used; ++cut) {
        // A fresh copy of exactly `cut` bytes, so a read past it is caught
        // by the sanitizers.
        std::vector<unsigned char> piece(block.begin(), block.begin() + static_cast<long>(cut));
        source.mHost->SetState(static_cast<unsigned int>(cut), piece.empty() ? nullptr : piece.data());
    }
    EXPECT_EQ(trace.LinesStartingWith("proc.setState").size(), 0u);
    EXPECT_EQ(log.Count("SetState refused"), used);
    // The whole block still works afterwards.
    source.mHost->SetState(static_cast<unsigned int>(used), block.data());
    EXPECT_EQ(trace.LinesStartingWith("proc.setState volume=").size(), 1u);
}

TEST(Vst3StateBadInput, LengthFieldsPastTheEnd)
{
    CLogCapture log;
    CTrace trace;
    CHostedPlugin plugin("MrvTestSynth");
    auto block = SaveState(*plugin.mHost);
    const uint32_t componentSize = ReadU32(block, 0);
    const uint32_t sizes[] = {0xFFFFFFFFu, 0x7FFFFFFFu, static_cast<uint32_t>(block.size())};
    for (uint32_t lie : sizes) {
        auto bad = block;
        std::memcpy(bad.data(), &lie, 4);
        plugin.mHost->SetState(static_cast<unsigned int>(bad.size()), bad.data());
        bad = block;
        std::memcpy(bad.data() + 4 + componentSize, &lie, 4);
        plugin.mHost->SetState(static_cast<unsigned int>(bad.size()), bad.data());
    }
    EXPECT_EQ(trace.LinesStartingWith("proc.setState").size(), 0u);
    EXPECT_GE(log.Count("SetState refused"), 6u);
    // A truthful but short inner state reaches the plug-in, which refuses it.
    std::vector<unsigned char> small = {2, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
    small[0] = 2;
    small[1] = 0;
    plugin.mHost->SetState(static_cast<unsigned int>(small.size()), small.data());
    EXPECT_EQ(trace.LinesStartingWith("proc.setState refused").size(), 1u);
}
