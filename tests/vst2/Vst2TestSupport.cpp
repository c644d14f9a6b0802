#include "Vst2TestSupport.h"

#include <sys/stat.h>

namespace Vst2Test {

std::string BuiltPlugin(const std::string& name) { return std::string(VST2_TEST_VST_DIR) + "/" + name; }

std::string TavrionPath() { return BuiltPlugin("Tavrion V2.vst"); }

bool FileExists(const std::string& path)
{
    struct stat info;
    return stat(path.c_str(), &info) == 0;
}

HostedPlugin::HostedPlugin(const std::string& pluginPath, bool init) : path(pluginPath)
{
    host = std::make_unique<CFakeHostVST2>(owner, path);
    if (init)
        host->Init();
}

HostedPlugin::~HostedPlugin()
{
    if (host) {
        host->QuitGUI();
        host->Quit();
    }
}

}  // namespace Vst2Test
