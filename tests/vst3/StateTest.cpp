// The state block as a combined object writes it, and blocks that are cut
// short or lie about their lengths.
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
    // 0xFFFFFFFF wraps a 32-bit "offset + size" check.
    const uint32_t sizes[] = {0xFFFFFFFFu, 0x7FFFFFFFu, static_cast<uint32_t>(block.size())};
    for (uint32_t lie : sizes) {
        for (size_t at : {size_t{0}, size_t{4} + componentSize}) {
            auto bad = block;
            std::memcpy(bad.data() + at, &lie, 4);
            plugin.mHost->SetState(static_cast<unsigned int>(bad.size()), bad.data());
        }
    }
    EXPECT_EQ(trace.LinesStartingWith("proc.setState").size(), 0u);
    EXPECT_GE(log.Count("SetState refused"), 6u);
    // A truthful but short inner state reaches the plug-in, which refuses it.
    std::vector<unsigned char> small = {2, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0, 0};
    plugin.mHost->SetState(static_cast<unsigned int>(small.size()), small.data());
    EXPECT_EQ(trace.LinesStartingWith("proc.setState refused").size(), 1u);
}
