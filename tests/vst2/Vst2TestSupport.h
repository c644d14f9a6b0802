// Helpers for the VST 2 back end tests: where the built plug-ins are, the
// probe plug-in's record file and a fake host held for one test. The AAX
// doubles, context record, owner and log capture are shared test support.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "AaxHostDoubles.h"
#include "CLogCapture.h"
#include "CPluginRecordFile.h"
#include "CScopedEnv.h"
#include "CTempDir.h"
#include "CTestContext.h"
#include "CTestOwner.h"
#include "vst2/CFakeHostVST2.h"

namespace Vst2Test {

// The shared doubles, context record, owner and log capture.
using namespace TestSupport;

// Folder of the plug-ins this build makes (vst2probe*.so, Tavrion V2.vst).
inline std::string BuiltPlugin(const std::string& name) { return std::string(VST2_TEST_VST_DIR) + "/" + name; }
inline std::string TavrionPath() { return BuiltPlugin("Tavrion V2.vst"); }
constexpr const char* kDebianVstDir = "/usr/lib/vst/";
inline bool FileExists(const std::string& path) { return std::filesystem::exists(path); }

// The file the probe plug-in records into (VST2PROBE_LOG).
class CProbeRecord : public TestSupport::CPluginRecordFile {
public:
    CProbeRecord() : CPluginRecordFile("VST2PROBE_LOG") {}
};

// A fake host on a plug-in file, created and initialised, quit on destruction.
struct HostedPlugin {
    explicit HostedPlugin(const std::string& pluginPath) : path(pluginPath)
    {
        host = std::make_unique<CFakeHostVST2>(owner, path);
        host->Init();
    }
    ~HostedPlugin()
    {
        if (host) {
            host->QuitGUI();
            host->Quit();
        }
    }
    CTestOwner owner;
    std::string path;
    std::unique_ptr<CFakeHostVST2> host;
};

}  // namespace Vst2Test
