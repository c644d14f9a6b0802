// The chunk layout and its read-back. Damaged input is left to the fuzzer
// (fuzz/chunkparser, whose corpus aaxlib.fuzz_corpus_replay runs in every
// build) and to validate's state check on the NekobiElck bundle.
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "AAX_CChunkDataParser.h"
#include "ChunkBuffer.h"

using aaxlib_test::DataOf;
using aaxlib_test::MakeChunk;
using Bytes = std::vector<unsigned char>;

namespace {

Bytes Serialize(const AAX_CChunkDataParser& parser)
{
    auto chunk = MakeChunk(parser.GetChunkDataSize());
    EXPECT_EQ(0, parser.GetChunkData(chunk.get()));
    EXPECT_EQ(parser.GetChunkDataSize(), chunk->fSize);
    return DataOf(*chunk);
}

void Append(Bytes& out, const std::string& s) { out.insert(out.end(), s.begin(), s.end()); }
void Append(Bytes& out, std::initializer_list<unsigned char> b) { out.insert(out.end(), b); }

// Every tag once, as the writer must lay them out.
AAX_CChunkDataParser AllTypes()
{
    AAX_CChunkDataParser p;
    p.AddFloat("Gain", 1.0f);
    p.AddInt32("ab", -2);
    p.AddDouble("abc", 1.5);
    p.AddInt16("x", 0x1234);
    p.AddString("s", AAX_CString("abc"));
    p.AddString("t", AAX_CString("ab"));
    p.AddDouble("last", -0.25);
    return p;
}

Bytes AllTypesBytes()
{
    Bytes b = {1, 1, 1, 1};
    Append(b, std::string("f_Gain\0\0", 8));
    Append(b, {0x3F, 0x80, 0x00, 0x00});
    Append(b, std::string("l_ab\0\0\0\0", 8));
    Append(b, {0xFF, 0xFF, 0xFF, 0xFE});
    Append(b, std::string("d_abc\0\0\0", 8));
    Append(b, {0x3F, 0xF8, 0, 0, 0, 0, 0, 0});
    Append(b, std::string("s_x\0", 4));
    Append(b, {0x12, 0x34, 0x00, 0x00});
    Append(b, std::string("r_s\0", 4));
    Append(b, std::string("abc\0", 4));
    Append(b, std::string("r_t\0", 4));
    Append(b, std::string("ab\0\0", 4));
    Append(b, std::string("d_last\0\0", 8));
    Append(b, {0xBF, 0xD0, 0, 0, 0, 0, 0, 0});
    return b;
}

}  // namespace

TEST(ChunkParser, EveryTagIsByteExactWithZeroPadding)
{
    const AAX_CChunkDataParser parser = AllTypes();
    const Bytes expected = AllTypesBytes();
    EXPECT_EQ(static_cast<int32_t>(expected.size()), parser.GetChunkDataSize());

    // Pre-fill with garbage: padding must come out zero regardless.
    auto chunk = MakeChunk(parser.GetChunkDataSize());
    std::memset(chunk->fData, 0xAB, static_cast<size_t>(chunk->fSize));
    ASSERT_EQ(0, parser.GetChunkData(chunk.get()));
    EXPECT_EQ(expected, DataOf(*chunk));

    AAX_CChunkDataParser p;
    EXPECT_EQ((Bytes{1, 1, 1, 1}), Serialize(p));  // the bare header
    p.AddString("n", AAX_CString(""));  // "r_n\0" then "\0" padded to 4
    EXPECT_EQ(4 + 4 + 4, p.GetChunkDataSize());
}

TEST(ChunkParser, ReadBackKeepsValuesTheStringPaddingQuirkAndSkipsUnknownTags)
{
    auto chunk = MakeChunk(AllTypesBytes());
    chunk->fVersion = 7;
    AAX_CChunkDataParser parser;
    parser.LoadChunk(chunk.get());
    EXPECT_EQ(7, parser.GetChunkVersion());

    // "abc" + terminator fills its slot exactly; "ab" leaves one padding
    // byte, read back as one untyped entry with an empty name.
    ASSERT_EQ(8u, parser.NumEntries());
    const char* names[] = {"Gain", "ab", "abc", "x", "s", "t", "", "last"};
    const int32_t types[] = {1, 2, 3, 4, 5, 5, 0, 3};
    for (size_t i = 0; i < parser.NumEntries(); ++i) {
        EXPECT_EQ(names[i], parser.Entry(i).mDataName.StdString()) << i;
        EXPECT_EQ(types[i], parser.Entry(i).mDataType) << i;
    }
    float f = 0;
    int32_t l = 0;
    double d = 0;
    int16_t s = 0;
    AAX_CString text;
    EXPECT_TRUE(parser.FindFloat("Gain", &f) && f == 1.0f);
    EXPECT_TRUE(parser.FindInt32("ab", &l) && l == -2);
    EXPECT_TRUE(parser.FindInt16("x", &s) && s == 0x1234);
    EXPECT_TRUE(parser.FindString("t", &text) && text.StdString() == "ab");
    EXPECT_TRUE(parser.FindDouble("last", &d) && d == -0.25);  // found after the quirk entry
    EXPECT_FALSE(parser.FindDouble("Gain", &d));  // wrong type
    EXPECT_FALSE(parser.FindFloat("nope", &f));

    // The untyped read-back entry is not written again.
    EXPECT_EQ(AllTypesBytes(), Serialize(parser));

    // An unknown tag is kept as an untyped entry and the parse goes on.
    Bytes data = {1, 1, 1, 1};
    Append(data, std::string("x_odd\0\0\0", 8));
    Append(data, std::string("l_n\0", 4));
    Append(data, {0, 0, 0, 42});
    AAX_CChunkDataParser unknown;
    unknown.LoadChunk(MakeChunk(data).get());
    ASSERT_EQ(2u, unknown.NumEntries());
    EXPECT_EQ(0, unknown.Entry(0).mDataType);
    EXPECT_EQ("odd", unknown.Entry(0).mDataName.StdString());
    EXPECT_TRUE(unknown.FindInt32("n", &l) && l == 42);
}
