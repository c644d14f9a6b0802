// Where the wrapper looks for its plug-in outside its own bundle: the path
// variables first, in their order, then the usual Linux VST folders.
#include <gtest/gtest.h>

#include <algorithm>

#include "AAXWrapper_PluginLocator.h"
#include "CScopedEnv.h"

using TestSupport::CScopedEnv;

namespace {

// The candidates after the three the wrapper always tries first.
std::vector<std::string> LinuxCandidates(const std::string& extension)
{
    const std::vector<std::string> all = Morvane::BuildPluginCandidates("Synth", extension);
    const auto first = std::find_if(all.begin(), all.end(), [](const std::string& c) {
        return c.rfind("/Library/Audio/Plug-Ins/VST3/", 0) == 0;
    });
    return first == all.end() ? std::vector<std::string>() : std::vector<std::string>(first + 1, all.end());
}

}  // namespace

// VST 2: both path variables, then the vst and lxvst folders; VST 3: its own
// variable and folders only.
TEST(PluginSearch, EachFormatCoversItsPathVariablesAndFolders)
{
    CScopedEnv home("HOME", "/home/maker");
    CScopedEnv vstPath("VST_PATH", "/opt/a:/opt/b/");
    CScopedEnv lxvstPath("LXVST_PATH", "/opt/c");
    CScopedEnv vst3Path("VST3_PATH", "/opt/v3");
    std::vector<std::string> expected;
    for (const char* folder : {"/opt/a/", "/opt/b/", "/opt/c/", "/home/maker/.vst/", "/home/maker/.lxvst/",
                               "/usr/local/lib/vst/", "/usr/local/lib/lxvst/", "/usr/lib/vst/", "/usr/lib/lxvst/"}) {
        expected.push_back(std::string(folder) + "Synth.vst");
        expected.push_back(std::string(folder) + "Synth.so");
    }
    EXPECT_EQ(LinuxCandidates("vst"), expected);
    EXPECT_EQ(LinuxCandidates("vst3"),
              (std::vector<std::string>{"/opt/v3/Synth.vst3", "/home/maker/.vst3/Synth.vst3",
                                        "/usr/local/lib/vst3/Synth.vst3", "/usr/lib/vst3/Synth.vst3"}));
}
