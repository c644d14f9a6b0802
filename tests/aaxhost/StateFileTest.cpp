// The state file is read from disk and must refuse anything malformed.
#include <gtest/gtest.h>

#include <cstring>

#include "StateFile.h"

using namespace AAXHost;

namespace {

std::vector<SStateChunk> TwoChunks()
{
    SStateChunk a;
    a.id = 0x656C636B;  // 'elck'
    a.version = 3;
    std::memcpy(a.name, "parameters", 10);
    a.data = {1, 2, 3, 4, 5};
    SStateChunk b;
    b.id = 0x54765632;  // 'TvV2'
    b.data.assign(300, 'x');
    return {a, b};
}

}  // namespace

TEST(StateFile, RoundTripKeepsEveryChunkAndFieldAndMayBeEmpty)
{
    const auto bytes = SerializeState(TwoChunks());
    std::vector<SStateChunk> back;
    std::string error;
    ASSERT_TRUE(ParseState(bytes.data(), bytes.size(), back, error)) << error;
    ASSERT_EQ(back.size(), 2u);
    EXPECT_EQ(back[0].id, 0x656C636Bu);
    EXPECT_EQ(back[0].version, 3);
    EXPECT_EQ(std::string(reinterpret_cast<const char*>(back[0].name)), "parameters");
    EXPECT_EQ(back[0].data, TwoChunks()[0].data);
    EXPECT_EQ(back[1].data.size(), 300u);
    const auto empty = SerializeState({});
    EXPECT_TRUE(ParseState(empty.data(), empty.size(), back, error)) << error;
    EXPECT_TRUE(back.empty());
}

TEST(StateFile, EveryTruncationMalformedHeaderAndTrailingByteIsRefused)
{
    const auto good = SerializeState(TwoChunks());
    for (size_t n = 0; n < good.size(); ++n) {
        std::vector<SStateChunk> chunks;
        std::string error;
        EXPECT_FALSE(ParseState(good.data(), n, chunks, error)) << "length " << n;
        EXPECT_FALSE(error.empty());
        EXPECT_TRUE(chunks.empty() || n >= 16);
    }
    const size_t firstSize = 16 + 4 + 4 + 32;
    struct SCase {
        const char* what;
        void (*spoil)(std::vector<uint8_t>&);
    };
    const SCase cases[] = {
        {"magic", [](std::vector<uint8_t>& b) { b[0] = 'B'; }},
        {"version", [](std::vector<uint8_t>& b) { b[8] = 2; }},
        {"count", [](std::vector<uint8_t>& b) { b[12] = b[13] = b[14] = b[15] = 0xFF; }},
        // A data size that points past the end must not be followed.
        {"truncated", [](std::vector<uint8_t>& b) { b[firstSize + 3] = 0x7F; }},
        {"trailing", [](std::vector<uint8_t>& b) { b.push_back(0); }},
    };
    for (const SCase& c : cases) {
        auto bytes = good;
        c.spoil(bytes);
        std::vector<SStateChunk> chunks;
        std::string error;
        EXPECT_FALSE(ParseState(bytes.data(), bytes.size(), chunks, error)) << c.what;
        EXPECT_TRUE(chunks.empty()) << c.what;
        EXPECT_FALSE(error.empty()) << c.what;
    }
    std::vector<SStateChunk> chunks;
    std::string error;
    EXPECT_FALSE(ParseState(nullptr, 0, chunks, error));
}
