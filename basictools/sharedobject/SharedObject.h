// A loadable module: either a plug-in bundle (whose code stays mapped for the
// life of the process) or a plain library opened through the dynamic loader.
#pragma once

#include <functional>
#include <string>

namespace Morvane {

class SharedObject {
public:
    // Bundle mode: a CFBundleRef on macOS, a dlopen handle elsewhere.
    // Loader mode: a dlopen handle. Null when nothing is open.
    void* handle = nullptr;
    // Selects bundle mode (OpenBundle sets it, OpenLibrary clears it).
    bool isBundle = false;
    // Why the last open or lookup failed.
    std::string lastError;

    SharedObject() = default;
    SharedObject(const SharedObject&) = delete;
    SharedObject& operator=(const SharedObject&) = delete;
    ~SharedObject();

    // Opens a plug-in bundle. On Linux `path` is a shared library, or a
    // folder <Stem>.<ext> holding Contents/<arch>-linux/<Stem>.so or
    // <Stem>.so. Any previously open module is closed first.
    bool OpenBundle(const std::string& path);

    // Opens a plain library file through the dynamic loader.
    bool OpenLibrary(const std::string& path);

    // Bundle mode: balances every successful module entry call with the
    // module's exit function, then forgets the handle without unmapping the
    // code. Loader mode: dlclose.
    void Close();

    // Looks `name` up. With callEntry (bundle mode only) the bundle's module
    // entry runs first; if it refuses, the bundle is released and every
    // later lookup fails. Empty callable when the symbol is absent.
    template <typename F>
    std::function<F> GetFunction(const char* name, bool callEntry)
    {
        void* symbol = GetSymbol(name, callEntry);
        if (symbol == nullptr)
            return std::function<F>();
        return std::function<F>(reinterpret_cast<F*>(symbol));
    }

    // Untyped form of GetFunction.
    void* GetSymbol(const char* name, bool callEntry);

private:
    // Platform layer of bundle mode (SharedObjectBundle*.cpp).
    bool OpenBundleImpl(const std::string& path);
    // Calls the module entry: 1 accepted, 0 refused, -1 not exported.
    int CallBundleEntry();
    void* FindBundleSymbol(const char* name);
    void CallBundleExit();
    // Gives back the reference of a bundle whose entry refused to start.
    void DropRefusedBundle();

    void ReleaseBundle(bool refused);
    void* FindLibrarySymbol(const char* name);

    // Successful module entry calls not yet balanced by an exit call.
    int mEntryCount = 0;
};

}  // namespace Morvane
