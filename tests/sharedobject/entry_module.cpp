// A bundle binary following the Linux VST 3 module convention, counting how
// it is entered and left.
#define PROBE_EXPORT extern "C" __attribute__((visibility("default")))

namespace {
int gEntryAnswer = 1;
int gEntryCount = 0;
int gExitCount = 0;
void* gEntryHandle = nullptr;
}  // namespace

PROBE_EXPORT bool ModuleEntry(void* handle)
{
    ++gEntryCount;
    gEntryHandle = handle;
    return gEntryAnswer != 0;
}

PROBE_EXPORT bool ModuleExit() { return ++gExitCount > 0; }

PROBE_EXPORT void so_set_entry_answer(int answer) { gEntryAnswer = answer; }
PROBE_EXPORT int so_entry_count() { return gEntryCount; }
PROBE_EXPORT int so_exit_count() { return gExitCount; }
PROBE_EXPORT void* so_entry_handle() { return gEntryHandle; }
PROBE_EXPORT int so_answer() { return 42; }
