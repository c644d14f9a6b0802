// STANDARD: after a host change the AAX parameter holds what the plug-in
// holds (switches and choices snap the host's value), so the parameter chunk
// a session saves is the one a restore gives back. Real plug-ins with such
// parameters. Not here: LSP's plug-ins,
// whose chunks do not give back the values their getParameter reported
// before the save (hosted directly, 22 of LSP Compressor's 35 differ after
// a restore: switches and choices snap, some continuous values move in
// their last bits), so no host can save the values a restore will find.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "TestSupport.h"

using namespace AAXHostTest;

TEST(HeldValues, SnappingPlugInsRestoreTheirStateByteForByte)
{
    // Our wide test plug-in's switch: aaxhost.ValidateLevel5.StandardWide.
    for (const char* name : {"DragonflyRoom", "FdnReverb", "DualDelay"}) {
        SCOPED_TRACE(name);
        const std::string bundle = StandardBundle(name);
        if (!std::filesystem::exists(bundle))
            continue;  // its Debian package is not installed
        // No display: JUCE plug-ins would otherwise take display 0, which a
        // parallel test's virtual X server may hold and take away mid-check.
        const SRunResult run = RunHost(
            {"validate", bundle, "--level", "5", "--seed", "7", "--only", "state", "parameters", "--no-progress"},
            {"DISPLAY=:4242"});
        EXPECT_EQ(run.exitCode, 0) << run.out << run.err;
    }
}
