// What a STANDARD wrapper sets around its plug-in as mainstream hosts do,
// seen from inside the plug-in through the built bundles and aaxhost: the
// floating-point mode of the process call and the offline notification.
// CLASSIC bundles of the same plug-ins show that nothing changed for them.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <string>
#include <vector>

#include "TestSupport.h"

using namespace AAXHostTest;

namespace {

const std::string kProbeClassic = std::string(AAXHOST_BUNDLE_DIR) + "/Probe.aaxplugin";
const std::string kProbeStandard = std::string(AAXHOST_BUNDLE_DIR) + "/standard/Probe.aaxplugin";
const std::string kSynthStandard = std::string(AAXHOST_BUNDLE_DIR) + "/standard/MrvTestSynth.aaxplugin";

std::vector<std::string> LinesStartingWith(const std::string& path, const std::string& prefix)
{
    std::ifstream in(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(in, line);)
        if (line.rfind(prefix, 0) == 0)
            lines.push_back(line);
    return lines;
}

// The probe's "mode" lines (one per process call) of a short render.
std::vector<std::string> ProbeModes(const std::string& bundle, const std::string& name,
                                    std::vector<std::string> extra = {})
{
    const std::string dir = TempDir(name);
    const std::string log = dir + "/probe.log";
    std::vector<std::string> args = {"render", bundle, "--seconds", "0.05", "--block", "512", "--out", dir + "/out.wav"};
    args.insert(args.end(), extra.begin(), extra.end());
    const SRunResult r = RunHost(args, {"VST2PROBE_LOG=" + log});
    EXPECT_EQ(r.exitCode, 0) << r.err;
    return LinesStartingWith(log, "mode ");
}

}  // namespace

TEST(Declared, StandardFlushesDenormalsInsideTheProcessCallOnlyAndClassicNever)
{
    const std::vector<std::string> standard = ProbeModes(kProbeStandard, "ftz-standard");
    ASSERT_EQ(standard.size(), 5u);  // 2400 samples in buffers of 512
    for (const std::string& line : standard)
        EXPECT_EQ(line.rfind("mode ftz=1 daz=1 ", 0), 0u) << line;
    const std::vector<std::string> classic = ProbeModes(kProbeClassic, "ftz-classic");
    ASSERT_EQ(classic.size(), 5u);
    for (const std::string& line : classic)
        EXPECT_EQ(line.rfind("mode ftz=0 daz=0 ", 0), 0u) << line;
}

// The VST 2 process level: real time on the audio thread by default,
// offline once the host said so; CLASSIC keeps its old silence.
TEST(Declared, Vst2ProcessLevelFollowsTheOfflineNotification)
{
    for (const std::string& line : ProbeModes(kProbeStandard, "level-realtime"))
        EXPECT_NE(line.find(" level=2"), std::string::npos) << line;
    const std::vector<std::string> offline = ProbeModes(kProbeStandard, "level-offline", {"--offline"});
    ASSERT_FALSE(offline.empty());
    for (const std::string& line : offline)
        EXPECT_NE(line.find(" level=4"), std::string::npos) << line;
    for (const std::string& line : ProbeModes(kProbeClassic, "level-classic", {"--offline"}))
        EXPECT_NE(line.find(" level=0"), std::string::npos) << line;
}

// VST 3: the set-up changes only with the component switched off, and every
// process call after the notification runs in offline mode (kOffline = 2).
TEST(Declared, Vst3IsSetUpAgainOfflineWithTheComponentSwitchedOffAndOn)
{
    const std::string dir = TempDir("vst3-offline");
    const std::string trace = dir + "/trace.txt";
    const SRunResult r = RunHost({"render", kSynthStandard, "--seconds", "0.05", "--offline", "--out", dir + "/out.wav"},
                                 {"MRV_VST3_TRACE=" + trace});
    ASSERT_EQ(r.exitCode, 0) << r.err;
    std::vector<std::string> sequence;
    for (const std::string& line : LinesStartingWith(trace, "proc.")) {
        if (line.rfind("proc.setupProcessing", 0) == 0)
            sequence.push_back(line.substr(0, line.find(" size=")));
        else if (line.rfind("proc.setActive", 0) == 0 || line.rfind("proc.setProcessing", 0) == 0)
            sequence.push_back(line);
        else if (line.rfind("proc.process ", 0) == 0 && (sequence.empty() || sequence.back() != "process"))
            sequence.push_back("process");
    }
    // The notification comes before the first buffer: off, offline set-up,
    // on, and only then processing.
    const auto offline = std::find(sequence.begin(), sequence.end(), "proc.setupProcessing mode=2");
    ASSERT_NE(offline, sequence.end()) << testing::PrintToString(sequence);
    ASSERT_TRUE(offline != sequence.begin() && offline + 1 != sequence.end());
    EXPECT_EQ(*(offline - 1), "proc.setActive 0");
    EXPECT_EQ(*(offline + 1), "proc.setActive 1");
    EXPECT_EQ(std::find(sequence.begin(), offline, "process"), offline) << testing::PrintToString(sequence);
    EXPECT_NE(std::find(offline, sequence.end(), "process"), sequence.end());

    const SRunResult realtime = RunHost({"render", kSynthStandard, "--seconds", "0.05", "--out", dir + "/rt.wav"},
                                        {"MRV_VST3_TRACE=" + dir + "/rt.txt"});
    ASSERT_EQ(realtime.exitCode, 0) << realtime.err;
    for (const std::string& line : LinesStartingWith(dir + "/rt.txt", "proc.setupProcessing"))
        EXPECT_EQ(line.rfind("proc.setupProcessing mode=0 ", 0), 0u) << line;
}
