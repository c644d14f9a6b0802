// What a STANDARD wrapper sets around its plug-in as mainstream hosts do,
// seen from inside the plug-in through the built bundles and aaxhost: the
// floating-point mode of the process call.
// CLASSIC bundles of the same plug-ins show that nothing changed for them.
#include <gtest/gtest.h>

#include <fstream>
#include <string>
#include <vector>

#include "TestSupport.h"

using namespace AAXHostTest;

namespace {

const std::string kProbeClassic = std::string(AAXHOST_BUNDLE_DIR) + "/Probe.aaxplugin";
const std::string kProbeStandard = std::string(AAXHOST_BUNDLE_DIR) + "/standard/Probe.aaxplugin";

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
