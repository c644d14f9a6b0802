// What a hostile user or a broken file system hands aaxhost and the wrapper:
// special files where files are expected, truncated libraries, damaged MIDI
// and state, NaN, bad command lines, a plug-in that ends the process. Each
// gets a clear answer, never a hang, a crash or a flood.
#include <sys/stat.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <fstream>

#include "AAX_CChunkDataParser.h"
#include "StateFile.h"
#include "TestSupport.h"

using namespace AAXHostTest;
namespace fs = std::filesystem;

namespace {

const std::string kProbeBundle = Bundle("Probe");
constexpr uint32_t kElckID = 0x656C636B;  // 'elck'

// A private copy of the probe's bundle, free to be broken.
std::string CopyOfProbe(const std::string& dir)
{
    const std::string copy = dir + "/Probe.aaxplugin";
    fs::remove_all(copy);
    fs::copy(kProbeBundle, copy, fs::copy_options::recursive);
    return copy;
}

// Where the big-endian double of parameter "0" lies in an elck chunk.
std::vector<char>::iterator ValueOfParameterZero(AAXHost::SStateChunk& chunk)
{
    const std::string name("d_0\0", 4);
    auto at = std::search(chunk.data.begin(), chunk.data.end(), name.begin(), name.end());
    return at == chunk.data.end() ? at : at + 4;
}

SRunResult RenderProbe(const std::string& bundle, const std::string& dir, std::vector<std::string> extra = {},
                       std::vector<std::string> env = {})
{
    std::vector<std::string> args = {"render", bundle, "--seconds", "0.05", "--out", dir + "/out.wav", "--no-progress"};
    args.insert(args.end(), extra.begin(), extra.end());
    return RunHost(args, env);
}

}  // namespace

// Special files where files are expected never block; bad values never
// start a render.
TEST(Hostile, SpecialFilesAndBadCommandLinesExitOneWithAMessage)
{
    const std::string dir = TempDir("special");
    ASSERT_EQ(mkfifo((dir + "/fifo").c_str(), 0600), 0);
    fs::create_directories(dir + "/folder");
    const std::pair<std::vector<std::string>, const char*> cases[] = {
        {{"--load-state", dir + "/fifo"}, "is not a regular file"},
        {{"--load-state", dir + "/folder"}, "is not a regular file"},
        {{"--midi", dir + "/fifo"}, "is not a regular file"},
        {{"--save-state", "/dev/full"}, "is not a regular file"},
        {{"--rate", "nan"}, ""}, {{"--rate", "inf"}, ""}, {{"--block", "1e3"}, ""}, {{"--editor-at", "-1"}, ""},
        {{"--tempo", "nan"}, ""}, {{"--instances", "x"}, ""}, {{"--no-such-option"}, ""},
    };
    for (const auto& [args, message] : cases) {
        const SRunResult r = RenderProbe(kProbeBundle, dir, args);
        EXPECT_EQ(r.exitCode, 1) << args[0] << ": " << r.err;
        EXPECT_NE(r.err.find("aaxhost: error: "), std::string::npos) << r.err;
        EXPECT_NE(r.err.find(message), std::string::npos) << r.err;
    }

    // The plug-in file itself is a FIFO: not found, reported, no hang.
    const std::string fifoPlugin = CopyOfProbe(dir);
    fs::remove(fifoPlugin + "/Contents/Resources/Probe.vst");
    ASSERT_EQ(mkfifo((fifoPlugin + "/Contents/Resources/Probe.vst").c_str(), 0600), 0);
    const SRunResult r = RenderProbe(fifoPlugin, dir);
    EXPECT_EQ(r.exitCode, 1) << r.err;
    EXPECT_NE(r.err.find("the wrapped plug-in could not be loaded"), std::string::npos) << r.err;
}

TEST(Hostile, SpecialLogConfigurationsAndOutputFilesAreIgnored)
{
    const std::string dir = TempDir("logconf");
    const std::string bundle = CopyOfProbe(dir);
    const std::string conf = bundle + "/Contents/Resources/log.conf";
    ASSERT_EQ(mkfifo((dir + "/fifo").c_str(), 0600), 0);
    const std::vector<std::function<void()>> setups = {
        [&] { fs::create_symlink(dir + "/fifo", conf); },
        [&] { fs::create_symlink("/dev/zero", conf); },
        [&] { fs::create_symlink("/dev/urandom", conf); },
        [&] { std::ofstream(conf) << "fakehost info\nOutputFile " << dir << "/fifo\n"; },
        // Two output files: the second names the file, once.
        [&] { std::ofstream(conf) << "fakehost info\nOutputFile " << dir << "/a.log\nOutputFile " << dir << "/b.log\n"; },
    };
    for (size_t i = 0; i < setups.size(); ++i) {
        fs::remove(conf);
        setups[i]();
        const SRunResult r = RenderProbe(bundle, dir);
        EXPECT_EQ(r.exitCode, 0) << "case " << i << ": " << r.err;
        EXPECT_LT(r.out.size(), 100000u) << "case " << i;
    }
}

TEST(Hostile, TruncatedPlugInLibraryIsRefusedBeforeLoading)
{
    const std::string dir = TempDir("truncated");
    const std::string bundle = CopyOfProbe(dir);
    const std::string library = bundle + "/Contents/Resources/Probe.vst";
    // Cut inside its loadable segments (the tail of a build with debug
    // information is only that).
    fs::resize_file(library, 8192);
    const SRunResult r = RenderProbe(bundle, dir);
    EXPECT_EQ(r.exitCode, 1) << r.err;
    EXPECT_NE(r.err.find("truncated"), std::string::npos) << r.err;
}

// Damaged files in general are the fuzzer's (fuzz/midireader); these two
// must play.
TEST(Hostile, MidiFilesWithSysExOrWithoutEndOfTrackPlay)
{
    const std::string dir = TempDir("midi");
    const std::string good = dir + "/good.mid";
    WriteTestPhrase(good);
    std::string bytes = ReadWholeFile(good);
    ASSERT_GT(bytes.size(), 30u);

    auto write = [&](const std::string& name, const std::string& content) {
        std::ofstream(dir + "/" + name, std::ios::binary) << content;
        return dir + "/" + name;
    };
    // A SysEx event ahead of the notes, and a track without End of Track.
    std::string sysex = bytes;
    const size_t track = sysex.find("MTrk") + 8;
    sysex.insert(track, std::string("\x00\xF0\x03\x7E\x7F\xF7", 6));
    const uint32_t length = static_cast<uint32_t>(bytes.size() - track + 6);
    for (int i = 0; i < 4; ++i)
        sysex[track - 4 + i] = static_cast<char>((length >> (24 - 8 * i)) & 0xFF);
    const SRunResult withSysex = RenderProbe(kProbeBundle, dir, {"--midi", write("sysex.mid", sysex), "--json"});
    EXPECT_EQ(withSysex.exitCode, 0) << withSysex.err;
    EXPECT_GT(withSysex.Json()["instances"][0]["midi_in"].get<int>(), 0);
    const SRunResult noEnd = RenderProbe(kProbeBundle, dir, {"--midi", write("noend.mid", bytes.substr(0, bytes.size() - 4))});
    EXPECT_EQ(noEnd.exitCode, 0) << noEnd.err;
}

TEST(Hostile, NanIsCountedRefusedAndNeverPublished)
{
    const std::string dir = TempDir("nan");
    // A plug-in writing NaN: counted, and the render fails.
    const SRunResult blown = RenderProbe(kProbeBundle, dir, {"--json"}, {"VST2PROBE_NAN_OUTPUT=1"});
    EXPECT_EQ(blown.exitCode, 1);
    EXPECT_NE(blown.err.find("NaN"), std::string::npos) << blown.err;
    EXPECT_GT(blown.Json()["instances"][0]["channels"][0]["nan"].get<int>(), 0) << blown.out;

    // A state whose parameter chunk holds NaN: the value is refused, the
    // output stays finite.
    const std::string state = dir + "/good.state";
    ASSERT_EQ(RenderProbe(kProbeBundle, dir, {"--save-state", state}).exitCode, 0);
    std::vector<AAXHost::SStateChunk> chunks;
    std::string error;
    ASSERT_TRUE(AAXHost::ReadStateFile(state, chunks, error)) << error;
    bool poisoned = false;
    for (auto& c : chunks) {
        if (c.id != kElckID)
            continue;
        const auto at = ValueOfParameterZero(c);
        ASSERT_NE(at, c.data.end());
        const double nan = std::numeric_limits<double>::quiet_NaN();
        uint64_t bits = 0;
        std::memcpy(&bits, &nan, 8);
        for (int i = 0; i < 8; ++i)
            *(at + i) = static_cast<char>((bits >> (56 - 8 * i)) & 0xFF);
        poisoned = true;
    }
    ASSERT_TRUE(poisoned);
    ASSERT_TRUE(AAXHost::WriteStateFile(dir + "/nan.state", chunks, error)) << error;
    const SRunResult restored = RenderProbe(kProbeBundle, dir, {"--load-state", dir + "/nan.state", "--json"});
    EXPECT_EQ(restored.exitCode, 0) << restored.err;

    // A plug-in reporting NaN as a value: published as 0.
    const SRunResult params = RunHost({"params", kProbeBundle, "--json"}, {"VST2PROBE_NAN_PARAMETER=1"});
    ASSERT_EQ(params.exitCode, 0) << params.err;
    const nlohmann::json list = params.Json()["parameters"];
    EXPECT_EQ(list[2]["default"].get<double>(), 0.0);
}

TEST(Hostile, AStateWithoutItsParameterChunkStillLeavesOneTruth)
{
    const std::string dir = TempDir("no-elck");
    ASSERT_EQ(RenderProbe(kProbeBundle, dir, {"--set", "0=0.9", "--save-state", dir + "/full.state"}).exitCode, 0);
    std::vector<AAXHost::SStateChunk> chunks;
    std::string error;
    ASSERT_TRUE(AAXHost::ReadStateFile(dir + "/full.state", chunks, error)) << error;
    chunks.erase(std::remove_if(chunks.begin(), chunks.end(), [](const auto& c) { return c.id == kElckID; }),
                 chunks.end());
    ASSERT_TRUE(AAXHost::WriteStateFile(dir + "/plugin-only.state", chunks, error)) << error;

    ASSERT_EQ(RenderProbe(kProbeBundle, dir, {"--load-state", dir + "/plugin-only.state", "--save-state", dir + "/again.state"})
                  .exitCode,
              0);
    ASSERT_TRUE(AAXHost::ReadStateFile(dir + "/again.state", chunks, error)) << error;
    for (auto& c : chunks) {
        if (c.id != kElckID)
            continue;
        const auto at = ValueOfParameterZero(c);
        ASSERT_NE(at, c.data.end());
        uint64_t bits = 0;
        for (int i = 0; i < 8; ++i)
            bits = (bits << 8) | static_cast<uint8_t>(*(at + i));
        double value = 0;
        std::memcpy(&value, &bits, 8);
        EXPECT_NEAR(value, 0.9, 1e-6) << "the AAX parameter did not follow the plug-in's restored state";
    }
}

TEST(Hostile, APlugInThatEndsTheProcessIsReported)
{
    const SRunResult r = RenderProbe(kProbeBundle, TempDir("exit"), {}, {"VST2PROBE_EXIT_ON_OPEN=1"});
    EXPECT_EQ(r.exitCode, 1);
    EXPECT_NE(r.err.find("aaxhost: error: the plug-in ended the process during instance creation"), std::string::npos)
        << r.err;
}
