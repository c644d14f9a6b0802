// Bundle mode on macOS: a Core Foundation bundle, entered through
// "bundleEntry" and left through "bundleExit" when the bundle exports them.
#ifdef __APPLE__

#include "sharedobject/SharedObject.h"

#include <CoreFoundation/CoreFoundation.h>

namespace Morvane {
namespace {

using BundleEntryProc = bool (*)(CFBundleRef);
using BundleExitProc = bool (*)();

void* LookUp(void* handle, const char* name)
{
    CFStringRef cfName = CFStringCreateWithCString(kCFAllocatorDefault, name, kCFStringEncodingASCII);
    if (cfName == nullptr)
        return nullptr;
    void* symbol = CFBundleGetFunctionPointerForName(static_cast<CFBundleRef>(handle), cfName);
    CFRelease(cfName);
    return symbol;
}

}  // namespace

bool SharedObject::OpenBundleImpl(const std::string& path)
{
    CFStringRef cfPath = CFStringCreateWithCString(kCFAllocatorDefault, path.c_str(), kCFStringEncodingUTF8);
    if (cfPath == nullptr) {
        lastError = "path is not UTF-8: " + path;
        return false;
    }
    CFURLRef url = CFURLCreateWithFileSystemPath(kCFAllocatorDefault, cfPath, kCFURLPOSIXPathStyle, false);
    CFRelease(cfPath);
    if (url == nullptr) {
        lastError = "cannot make a URL from " + path;
        return false;
    }
    CFBundleRef bundle = CFBundleCreate(kCFAllocatorDefault, url);
    CFRelease(url);
    if (bundle == nullptr) {
        lastError = "not a bundle: " + path;
        return false;
    }
    handle = bundle;
    return true;
}

int SharedObject::CallBundleEntry()
{
    const auto entry = reinterpret_cast<BundleEntryProc>(LookUp(handle, "bundleEntry"));
    if (entry == nullptr)
        return -1;
    return entry(static_cast<CFBundleRef>(handle)) ? 1 : 0;
}

void* SharedObject::FindBundleSymbol(const char* name)
{
    void* symbol = LookUp(handle, name);
    if (symbol == nullptr)
        lastError = std::string("symbol not found: ") + name;
    return symbol;
}

void SharedObject::CallBundleExit()
{
    const auto exitProc = reinterpret_cast<BundleExitProc>(LookUp(handle, "bundleExit"));
    if (exitProc != nullptr)
        exitProc();
}

void SharedObject::DropRefusedBundle()
{
    // Core Foundation keeps a loaded bundle's code mapped; this only gives
    // back our reference.
    CFRelease(static_cast<CFBundleRef>(handle));
}

}  // namespace Morvane

#endif  // __APPLE__
