// A module with entry and exit but no GetPluginFactory.
#define MRV_EXPORT extern "C" __attribute__((visibility("default")))

MRV_EXPORT bool ModuleEntry(void*) { return true; }
MRV_EXPORT bool ModuleExit() { return true; }
