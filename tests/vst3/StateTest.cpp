// The state block as a combined object writes it, and blocks that are cut
// short or lie about their lengths.
#include <cstring>

#include "Vst3TestSupport.h"

using namespace vst3test;

namespace {

std::vector<unsigned char> SaveState(CFakeHostVST3& host)
{
    const SPluginState state = host.GetState();
    EXPECT_TRUE(state.gave);
    return std::vector<unsigned char>(state.bytes.begin(), state.bytes.end());
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

// The end-to-end suite covers lying length fields; here every cut, where a
// sanitizer catches any read past the block.
TEST(Vst3StateBadInput, CutEveryLengthIsRefusedAndTheWholeBlockStillWorks)
{
    CHostedPlugin source("MrvTestSynth");
    auto block = SaveState(*source.mHost);
    const size_t used = 8 + ReadU32(block, 0) + ReadU32(block, 4 + ReadU32(block, 0));
    CTrace trace;
    for (size_t cut = 0; cut < used; ++cut) {
        // A fresh copy of exactly `cut` bytes, so a read past it is caught
        // by the sanitizers.
        std::vector<unsigned char> piece(block.begin(), block.begin() + static_cast<long>(cut));
        EXPECT_FALSE(source.mHost->SetState(piece.empty() ? nullptr : piece.data(), static_cast<uint32_t>(cut)))
            << cut;
    }
    EXPECT_EQ(trace.LinesStartingWith("proc.setState").size(), 0u);
    EXPECT_TRUE(source.mHost->SetState(block.data(), static_cast<uint32_t>(used)));
    EXPECT_EQ(trace.LinesStartingWith("proc.setState volume=").size(), 1u);
}
