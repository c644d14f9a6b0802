#include "BundleLoader.h"

#include "sharedobject/ElfImageCheck.h"

#include <dlfcn.h>

#include <filesystem>
#include <system_error>
#include <vector>

namespace AAXHost {

namespace fs = std::filesystem;

namespace {

#ifdef __APPLE__
constexpr const char* kPlatformFolder = "MacOS";
constexpr const char* kLibrarySuffix = "";
#else
constexpr const char* kPlatformFolder = "x86_64-linux";
constexpr const char* kLibrarySuffix = ".so";
#endif

std::string BundleBaseName(const fs::path& bundle)
{
    fs::path p = bundle;
    if (!p.has_filename())
        p = p.parent_path();  // a trailing "/"
    std::string name = p.filename().string();
    const std::string ext = ".aaxplugin";
    if (name.size() > ext.size() && name.compare(name.size() - ext.size(), ext.size(), ext) == 0)
        name.resize(name.size() - ext.size());
    return name;
}

template <class F>
F Resolve(void* handle, const char* name)
{
    return reinterpret_cast<F>(dlsym(handle, name));
}

}  // namespace

bool FindBundleLibrary(const std::string& bundlePath, std::string& libraryPath, std::string& error)
{
    std::error_code ec;
    const fs::path bundle(bundlePath);
    if (bundlePath.empty() || !fs::exists(bundle, ec)) {
        error = "bundle not found: " + bundlePath;
        return false;
    }
    if (fs::is_regular_file(bundle, ec)) {
        libraryPath = bundlePath;
        return true;
    }
    if (!fs::is_directory(bundle, ec)) {
        error = "not a bundle folder or library: " + bundlePath;
        return false;
    }
    const fs::path folder = bundle / "Contents" / kPlatformFolder;
    const fs::path expected = folder / (BundleBaseName(bundle) + kLibrarySuffix);
    if (fs::is_regular_file(expected, ec)) {
        libraryPath = expected.string();
        return true;
    }
    std::vector<fs::path> candidates;
    if (fs::is_directory(folder, ec)) {
        for (const auto& entry : fs::directory_iterator(folder, ec)) {
            const std::string ext = entry.path().extension().string();
            if (entry.is_regular_file(ec) && (ext == kLibrarySuffix || std::string(kLibrarySuffix).empty()))
                candidates.push_back(entry.path());
        }
    }
    if (candidates.size() == 1) {
        libraryPath = candidates.front().string();
        return true;
    }
    error = candidates.empty() ? "no plug-in library in bundle: expected " + expected.string()
                               : "several libraries in " + folder.string() + " and none named " +
                                     expected.filename().string();
    return false;
}

bool LoadBundle(const std::string& bundlePath, SLoadedBundle& out, std::string& error)
{
    out = SLoadedBundle();
    out.bundlePath = bundlePath;
    if (!FindBundleLibrary(bundlePath, out.libraryPath, error))
        return false;
    // A truncated library would kill aaxhost inside dlopen (SIGBUS).
    std::string why;
    if (!Morvane::CheckElfImage(out.libraryPath, why)) {
        error = "cannot load " + out.libraryPath + ": " + why;
        return false;
    }
    dlerror();
    out.handle = dlopen(out.libraryPath.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!out.handle) {
        const char* why = dlerror();
        error = "cannot load " + out.libraryPath + ": " + (why ? why : "unknown error");
        return false;
    }
    SBundleEntryPoints& e = out.entry;
    e.registerPlugin = Resolve<ACFRegisterPluginProc>(out.handle, "ACFRegisterPlugin");
    e.registerComponent = Resolve<ACFRegisterComponentProc>(out.handle, "ACFRegisterComponent");
    e.getClassFactory = Resolve<ACFGetClassFactoryProc>(out.handle, "ACFGetClassFactory");
    e.canUnloadNow = Resolve<ACFCanUnloadNowProc>(out.handle, "ACFCanUnloadNow");
    e.startup = Resolve<ACFStartupProc>(out.handle, "ACFStartup");
    e.shutdown = Resolve<ACFShutdownProc>(out.handle, "ACFShutdown");
    e.getSDKVersion = Resolve<ACFGetSDKVersionProc>(out.handle, "ACFGetSDKVersion");

    std::string missing;
    const std::pair<const char*, const void*> required[] = {
        {"ACFRegisterPlugin", reinterpret_cast<const void*>(e.registerPlugin)},
        {"ACFRegisterComponent", reinterpret_cast<const void*>(e.registerComponent)},
        {"ACFGetClassFactory", reinterpret_cast<const void*>(e.getClassFactory)},
        {"ACFCanUnloadNow", reinterpret_cast<const void*>(e.canUnloadNow)},
        {"ACFStartup", reinterpret_cast<const void*>(e.startup)},
        {"ACFShutdown", reinterpret_cast<const void*>(e.shutdown)},
        {"ACFGetSDKVersion", reinterpret_cast<const void*>(e.getSDKVersion)},
    };
    for (const auto& r : required)
        if (!r.second)
            missing += std::string(missing.empty() ? "" : ", ") + r.first;
    if (!missing.empty()) {
        error = "missing entry point(s) " + missing + " in " + out.libraryPath;
        return false;
    }
    return true;
}

}  // namespace AAXHost
