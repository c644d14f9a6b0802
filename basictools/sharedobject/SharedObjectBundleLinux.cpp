// Bundle mode on Linux: a bundle is a folder holding a shared library (or
// the library itself), entered through the VST 3 Linux module convention.
#ifndef __APPLE__

#include "sharedobject/SharedObject.h"
#include "sharedobject/ElfImageCheck.h"

#include <vector>

#include <dlfcn.h>
#include <sys/stat.h>

namespace Morvane {
namespace {

#if defined(__x86_64__)
constexpr const char* kArchFolder = "x86_64-linux";
#elif defined(__aarch64__)
constexpr const char* kArchFolder = "aarch64-linux";
#elif defined(__i386__)
constexpr const char* kArchFolder = "i386-linux";
#else
constexpr const char* kArchFolder = "unknown-linux";
#endif

using ModuleEntryProc = bool (*)(void*);
using ModuleExitProc = bool (*)();

bool IsRegularFile(const std::string& path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool IsFolder(const std::string& path)
{
    struct stat info {};
    return stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

// Libraries a bundle folder may hold, most specific layout first:
// the packaged layout (Contents/<arch>-linux/<Stem>.so), then a library
// lying directly in the folder (<Stem>.so).
std::vector<std::string> BundleLibraryCandidates(std::string folder)
{
    while (folder.size() > 1 && folder.back() == '/')
        folder.pop_back();
    const std::string::size_type slash = folder.rfind('/');
    const std::string name = slash == std::string::npos ? folder : folder.substr(slash + 1);
    const std::string::size_type dot = name.rfind('.');
    const std::string stem = (dot == std::string::npos || dot == 0) ? name : name.substr(0, dot);
    return {
        folder + "/Contents/" + kArchFolder + "/" + stem + ".so",
        folder + "/" + stem + ".so",
    };
}

}  // namespace

bool SharedObject::OpenBundleImpl(const std::string& path)
{
    std::string library;
    if (IsRegularFile(path)) {
        library = path;
    } else if (IsFolder(path)) {
        const std::vector<std::string> candidates = BundleLibraryCandidates(path);
        for (const std::string& candidate : candidates) {
            if (IsRegularFile(candidate)) {
                library = candidate;
                break;
            }
        }
        if (library.empty()) {
            lastError = "no library in bundle " + path + " (tried";
            for (const std::string& candidate : candidates)
                lastError += " " + candidate;
            lastError += ")";
            return false;
        }
    } else {
        lastError = "no such file or folder: " + path;
        return false;
    }

    // A truncated library would kill the process inside dlopen (SIGBUS).
    if (!CheckElfImage(library, lastError))
        return false;
    handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char* error = dlerror();
        lastError = error != nullptr ? error : "cannot open " + library;
        return false;
    }
    return true;
}

int SharedObject::CallBundleEntry()
{
    const auto entry = reinterpret_cast<ModuleEntryProc>(dlsym(handle, "ModuleEntry"));
    if (entry == nullptr)
        return -1;
    return entry(handle) ? 1 : 0;
}

void* SharedObject::FindBundleSymbol(const char* name)
{
    dlerror();
    void* symbol = dlsym(handle, name);
    if (symbol == nullptr) {
        const char* error = dlerror();
        lastError = error != nullptr ? error : std::string("symbol is null: ") + name;
    }
    return symbol;
}

void SharedObject::CallBundleExit()
{
    const auto exitProc = reinterpret_cast<ModuleExitProc>(dlsym(handle, "ModuleExit"));
    if (exitProc != nullptr)
        exitProc();
}

void SharedObject::DropRefusedBundle()
{
    // Kept mapped all the same: a half-initialised module may have left
    // threads or handlers running in its code.
}

}  // namespace Morvane

#endif  // !__APPLE__
