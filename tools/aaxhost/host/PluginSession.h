// One loaded bundle through its life: load, ACFStartup, registration, and at
// the end ACFShutdown and the ACFCanUnloadNow check.
#pragma once

#include <string>

#include "BundleLoader.h"
#include "PluginDescription.h"

namespace AAXHost {

class CHostServices;

class CPluginSession {
public:
    CPluginSession() = default;
    ~CPluginSession();
    CPluginSession(const CPluginSession&) = delete;
    CPluginSession& operator=(const CPluginSession&) = delete;

    // Loads the bundle, starts it and reads its description.
    bool Open(const std::string& bundlePath, std::string& error);
    // Shuts the plug-in down; everything created from it must be released
    // first. Fails when the plug-in still reports live objects.
    bool Close(std::string& error);

    const SPluginInfo& Info() const { return mInfo; }
    const SLoadedBundle& Bundle() const { return mBundle; }
    // The effect to run: the one with that ID, or the first when id is empty.
    const SEffectInfo* FindEffect(const std::string& id, std::string& error) const;
    int32_t LastCanUnloadNow() const { return mCanUnload; }

private:
    SLoadedBundle mBundle;
    SPluginInfo mInfo;
    CHostServices* mServices = nullptr;
    bool mStarted = false;
    int32_t mCanUnload = -1;
};

}  // namespace AAXHost
