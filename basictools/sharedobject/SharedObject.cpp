#include "sharedobject/SharedObject.h"

#ifndef __APPLE__
#include "sharedobject/ElfImageCheck.h"
#endif

#include <cstdio>

#include <dlfcn.h>

namespace Morvane {

SharedObject::~SharedObject()
{
    Close();
}

bool SharedObject::OpenBundle(const std::string& path)
{
    Close();
    isBundle = true;
    lastError.clear();
    return OpenBundleImpl(path);
}

bool SharedObject::OpenLibrary(const std::string& path)
{
    Close();
    isBundle = false;
    lastError.clear();
    if (path.empty()) {
        // dlopen would hand back the host program itself.
        lastError = "empty library path";
        return false;
    }
#ifndef __APPLE__
    if (!CheckElfImage(path, lastError))
        return false;
#endif
    handle = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char* error = dlerror();
        lastError = error != nullptr ? error : "cannot open " + path;
        return false;
    }
    return true;
}

void SharedObject::Close()
{
    if (handle == nullptr)
        return;
    if (isBundle) {
        ReleaseBundle(false);
    } else {
        dlclose(handle);
        handle = nullptr;
    }
}

void SharedObject::ReleaseBundle(bool refused)
{
    // A plug-in may still have threads or callbacks pointing into its code,
    // so a bundle is never unmapped: only its module entries are balanced.
    while (mEntryCount > 0) {
        --mEntryCount;
        CallBundleExit();
    }
    if (refused)
        DropRefusedBundle();
    handle = nullptr;
}

void* SharedObject::GetSymbol(const char* name, bool callEntry)
{
    if (handle == nullptr || name == nullptr) {
        lastError = "no module open";
        return nullptr;
    }
    if (!isBundle)
        return FindLibrarySymbol(name);

    if (callEntry) {
        switch (CallBundleEntry()) {
        case -1:
            puts("Bundle Entry not found");
            break;
        case 0:
            puts("FAILED what happened here ??? ");
            ReleaseBundle(true);
            lastError = "module entry refused to initialise";
            return nullptr;
        default:
            ++mEntryCount;
            break;
        }
    }
    void* symbol = FindBundleSymbol(name);
    if (symbol == nullptr)
        printf("Function not found %s\n", name);
    return symbol;
}

void* SharedObject::FindLibrarySymbol(const char* name)
{
    dlerror();  // a stale error must not be mistaken for this lookup's
    void* symbol = dlsym(handle, name);
    if (symbol == nullptr) {
        const char* error = dlerror();
        lastError = error != nullptr ? error : std::string("symbol is null: ") + name;
    }
    return symbol;
}

}  // namespace Morvane
