// A library without module entry or exit, like most VST 2 plug-ins.
#include <dlfcn.h>

#define PROBE_EXPORT extern "C" __attribute__((visibility("default")))

PROBE_EXPORT int so_answer() { return 7; }

PROBE_EXPORT const char* so_module_path()
{
    Dl_info info{};
    return dladdr(reinterpret_cast<void*>(&so_module_path), &info) != 0 ? info.dli_fname : "";
}
