// Finds and loads an AAX bundle's shared library the way a host does, and
// resolves its ACF entry points.
#pragma once

#include <string>

#include "ACFBase.h"

namespace AAXHost {

struct SBundleEntryPoints {
    ACFRegisterPluginProc registerPlugin = nullptr;
    ACFRegisterComponentProc registerComponent = nullptr;
    ACFGetClassFactoryProc getClassFactory = nullptr;
    ACFCanUnloadNowProc canUnloadNow = nullptr;
    ACFStartupProc startup = nullptr;
    ACFShutdownProc shutdown = nullptr;
    ACFGetSDKVersionProc getSDKVersion = nullptr;
};

struct SLoadedBundle {
    std::string bundlePath;
    std::string libraryPath;
    void* handle = nullptr;
    SBundleEntryPoints entry;
};

// The library inside a bundle folder: Contents/<platform>/<Name>.so, where
// <Name> is the folder's name without ".aaxplugin"; failing that, the only
// shared library in that folder. A path to a shared library is taken as is.
bool FindBundleLibrary(const std::string& bundlePath, std::string& libraryPath, std::string& error);

// Loads the library and resolves the entry points. The library stays mapped
// for the life of the process: plug-ins keep threads and static objects
// alive that an unload would pull out from under them.
bool LoadBundle(const std::string& bundlePath, SLoadedBundle& out, std::string& error);

}  // namespace AAXHost
