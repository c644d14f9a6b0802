// Opens a VST 2 plug-in file, finds its entry function, and on demand runs a
// diagnostic sequence on a created effect that writes its properties and a
// short processing test to the log.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "vst2/VstInterface.h"

namespace Morvane {
class SharedObject;
}

class CVST2PluginLoader {
public:
    using EntryFunction = std::function<AEffect*(audioMasterCallback)>;

    CVST2PluginLoader();
    ~CVST2PluginLoader();
    CVST2PluginLoader(const CVST2PluginLoader&) = delete;
    CVST2PluginLoader& operator=(const CVST2PluginLoader&) = delete;

    // Empty callable when the file cannot be opened or has no entry function.
    EntryFunction loadLibrary(const char* path);
    // Why the last loadLibrary gave an empty callable.
    std::string lastError() const;

    bool checkPlatform();
    void displayPluginsInfo(AEffect* effect);
    void checkEffectProperties(AEffect* effect);
    void checkEffectProcessing(AEffect* effect);

private:
    std::unique_ptr<Morvane::SharedObject> mLibrary;
};
