// Where this code lives and where the well-known folders are.
//
// Every function here has internal linkage on purpose: each image (the AAX
// bundle, a test module, the host) gets its own copy, so GetDyLibFullPath
// reports the image that contains the caller rather than the first one
// that happened to define the symbol.
#pragma once

#include <cstdio>
#include <cstdlib>
#include <string>

#include <dlfcn.h>

#include "stlutils.h"

namespace Morvane {

// The numeric values are a contract with callers and configuration.
enum Location : int {
    LocationProgramData = 0,
    LocationReserved1 = 1,
    LocationReserved2 = 2,
    LocationDesktop = 3,
    LocationDownloads = 4,
    LocationHome = 5,
    LocationRoot = 6,
};

// Absolute path of the image (bundle executable or shared object) holding
// this very function. Empty when the loader cannot tell.
static inline std::string GetDyLibFullPath()
{
    Dl_info info{};
    if (dladdr(reinterpret_cast<void*>(&GetDyLibFullPath), &info) == 0 || info.dli_fname == nullptr) {
        // The log may be resolving its own configuration through us, so
        // this goes straight to stderr.
        fwrite("dladdr failed\n", 1, 14, stderr);
        return std::string();
    }
    // The loader may keep "." components of the path it was given.
    return stlutils::replace_all(info.dli_fname, "/./", "/");
}

// Writes the folder of `location` (ending in "/", or empty for locations
// this platform does not have). Unknown values: false, outPath untouched.
static inline bool GetLocation(Location location, std::string& outPath)
{
    const char* text = nullptr;
    switch (location) {
    case LocationProgramData: text = "/Library/"; break;
    case LocationReserved1: text = ""; break;
    case LocationReserved2: text = ""; break;
    case LocationDesktop: text = "~/Desktop/"; break;
    case LocationDownloads: text = "~/Downloads/"; break;
    case LocationHome: text = "~/"; break;
    case LocationRoot: text = "/"; break;
    default: return false;
    }
    outPath = text;
    if (!outPath.empty() && outPath[0] == '~') {
        // Without HOME the "~" stays: better a visibly unexpanded path than
        // a guessed one.
        if (const char* home = std::getenv("HOME"))
            outPath = std::string(home) + outPath.substr(1);
    }
    return true;
}

// Folder part of `path` without a trailing separator; empty when `path` has
// no folder part. Trailing "/" or "\" are ignored first.
static inline std::string GetFolder(const std::string& path)
{
    const std::string::size_type last = path.find_last_not_of("/\\");
    if (last == std::string::npos)
        return std::string();
    std::string result = path.substr(0, last + 1);
    // Identity on this platform; a "\"-separated build normalises here.
    result = stlutils::replace_all(result, "/", "/");
    const std::string::size_type slash = result.rfind('/');
    if (slash == std::string::npos)
        return std::string();
    return result.substr(0, slash);
}

}  // namespace Morvane
