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

TEST(StateFile, RoundTripKeepsEveryChunkAndField)
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
}

TEST(StateFile, EveryTruncationIsRefused)
{
    const auto bytes = SerializeState(TwoChunks());
    for (size_t n = 0; n < bytes.size(); ++n) {
        std::vector<SStateChunk> chunks;
        std::string error;
        EXPECT_FALSE(ParseState(bytes.data(), n, chunks, error)) << "length " << n;
        EXPECT_FALSE(error.empty());
        EXPECT_TRUE(chunks.empty() || n >= 16);
    }
}

TEST(StateFile, MalformedHeadersAndTrailingBytesAreRefused)
{
    std::string error;
    std::vector<SStateChunk> chunks;
    auto bytes = SerializeState(TwoChunks());

    auto wrongMagic = bytes;
    wrongMagic[0] = 'B';
    EXPECT_FALSE(ParseState(wrongMagic.data(), wrongMagic.size(), chunks, error));

    auto wrongVersion = bytes;
    wrongVersion[8] = 2;
    EXPECT_FALSE(ParseState(wrongVersion.data(), wrongVersion.size(), chunks, error));
    EXPECT_NE(error.find("version"), std::string::npos);

    auto hugeCount = bytes;
    hugeCount[12] = hugeCount[13] = hugeCount[14] = hugeCount[15] = 0xFF;
    EXPECT_FALSE(ParseState(hugeCount.data(), hugeCount.size(), chunks, error));

    // A data size that points past the end must not be followed.
    auto hugeSize = bytes;
    const size_t firstSize = 16 + 4 + 4 + 32;
    hugeSize[firstSize + 3] = 0x7F;
    EXPECT_FALSE(ParseState(hugeSize.data(), hugeSize.size(), chunks, error));
    EXPECT_NE(error.find("truncated"), std::string::npos);

    auto trailing = bytes;
    trailing.push_back(0);
    EXPECT_FALSE(ParseState(trailing.data(), trailing.size(), chunks, error));
    EXPECT_TRUE(chunks.empty());

    EXPECT_FALSE(ParseState(nullptr, 0, chunks, error));
}

TEST(StateFile, EmptyStateIsValid)
{
    const auto bytes = SerializeState({});
    std::vector<SStateChunk> chunks;
    std::string error;
    EXPECT_TRUE(ParseState(bytes.data(), bytes.size(), chunks, error)) << error;
    EXPECT_TRUE(chunks.empty());
}
