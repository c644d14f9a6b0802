// The library's parameter chunk through the real thing: a bundle around a
// Debian VST 2 plug-in, loaded and driven by aaxhost, saved and restored.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "AAX_CChunkDataParser.h"
#include "AAX_CEffectParameters.h"
#include "ChunkBuffer.h"
#include "StateFile.h"

namespace {

namespace fs = std::filesystem;

const fs::path kWork = fs::path(AAXLIB_E2E_WORK_DIR);

int RunHost(const std::string& args)
{
    fs::create_directories(kWork);
    const std::string command = std::string("\"") + AAXLIB_E2E_AAXHOST + "\" render \"" + AAXLIB_E2E_BUNDLE +
                                "\" --seconds 0.2 --no-progress " + args + " > \"" + (kWork / "host.log").string() +
                                "\" 2>&1";
    return std::system(command.c_str());
}

// The elck chunk of a saved state, or an empty record when there is none.
AAXHost::SStateChunk ElckOf(const fs::path& stateFile)
{
    std::vector<AAXHost::SStateChunk> chunks;
    std::string error;
    EXPECT_TRUE(AAXHost::ReadStateFile(stateFile.string(), chunks, error)) << error;
    for (const auto& c : chunks)
        if (c.id == cDefaultChunkID) return c;
    ADD_FAILURE() << "no elck chunk in " << stateFile;
    return AAXHost::SStateChunk();
}

}  // namespace

// Saved with the bypass on, restored without it: the chunk holds the values,
// never the bypass, and saves back byte for byte.
TEST(EndToEnd, SavedChunkHoldsTheValuesButNotTheBypassAndRestoresIdentically)
{
    const fs::path first = kWork / "first.state";
    const fs::path second = kWork / "second.state";
    // Nekobi's parameter 1 (tuning) and 2 (cutoff) are continuous; its
    // parameter 0 (waveform) would come back as the plug-in rounds it.
    ASSERT_EQ(0, RunHost("-o \"" + (kWork / "a.wav").string() + "\" --bypass --set 1=0.25 --set 2=0.6 --save-state \"" +
                         first.string() + "\""));
    ASSERT_EQ(0, RunHost("-o \"" + (kWork / "b.wav").string() + "\" --load-state \"" + first.string() +
                         "\" --save-state \"" + second.string() + "\""));
    const AAXHost::SStateChunk elck = ElckOf(first);
    EXPECT_STREQ("Complete Controls State", reinterpret_cast<const char*>(elck.name));
    EXPECT_EQ(AAX_CChunkDataParser::kDefaultChunkVersion, elck.version);
    ASSERT_GE(elck.data.size(), 4u);
    EXPECT_EQ(0, std::memcmp(elck.data.data(), "\x01\x01\x01\x01", 4));
    EXPECT_EQ(elck.data, ElckOf(second).data);

    auto chunk = aaxlib_test::MakeChunk(std::vector<unsigned char>(elck.data.begin(), elck.data.end()));
    AAX_CChunkDataParser parser;
    parser.LoadChunk(chunk.get());
    double value = 0;
    EXPECT_TRUE(parser.FindDouble("1", &value));
    EXPECT_DOUBLE_EQ(0.25, value);
    EXPECT_TRUE(parser.FindDouble("2", &value));
    EXPECT_NEAR(0.6, value, 1e-6);
    EXPECT_EQ(-1, parser.FindName(AAX_CString("MasterBypassID")));
}
