#include "AllocationCount.h"

#include <dlfcn.h>
#include <execinfo.h>

#include <cstdlib>
#include <cstring>

namespace AAXHost {

namespace {

constexpr int kMaxSources = 32;
constexpr int kMaxFrames = 32;

struct SSourceSlot {
    char library[256];
    uint64_t allocations;
    uint64_t frees;
    void* stack[kMaxFrames];
    int depth;
};

bool gHooksInstalled = false;
const char* const kHostSource = "aaxhost";
// Written only by the armed thread, read by it after disarming.
SSourceSlot gSources[kMaxSources];
int gSourceCount = 0;
thread_local bool tArmed = false;
thread_local bool tInside = false;

bool IsRuntime(const char* path)
{
    static const char* const kRuntimes[] = {"/libc.so", "/libstdc++.so", "/libgcc_s.so", "/ld-linux", "/libasan.so",
                                            "/libtsan.so", "/libubsan.so", "/libm.so", "/libpthread.so"};
    for (const char* r : kRuntimes)
        if (std::strstr(path, r))
            return true;
    return false;
}

// The executable itself (aaxhost and its hooks) is not a source either.
const char* ExecutablePath()
{
    static const char* path = [] {
        Dl_info info{};
        return dladdr(reinterpret_cast<void*>(&ExecutablePath), &info) && info.dli_fname ? info.dli_fname : "";
    }();
    return path;
}

void Count(const char* library, bool isFree, void* const* frames, int depth)
{
    for (int i = 0; i < gSourceCount; ++i) {
        if (std::strcmp(gSources[i].library, library) == 0) {
            ++(isFree ? gSources[i].frees : gSources[i].allocations);
            return;
        }
    }
    const int slot = gSourceCount < kMaxSources ? gSourceCount++ : kMaxSources - 1;
    if (slot == gSourceCount - 1) {
        std::strncpy(gSources[slot].library, library, sizeof gSources[slot].library - 1);
        gSources[slot].library[sizeof gSources[slot].library - 1] = '\0';
        std::memcpy(gSources[slot].stack, frames, sizeof(void*) * static_cast<size_t>(depth));
        gSources[slot].depth = depth;
    }
    ++(isFree ? gSources[slot].frees : gSources[slot].allocations);
}

}  // namespace

bool AllocationCountingAvailable() { return gHooksInstalled; }
void MarkAllocationHooksInstalled() { gHooksInstalled = true; }

void ArmAllocationCount(bool armed)
{
    if (armed) {
        void* frames[4];
        backtrace(frames, 4);
        ExecutablePath();
    }
    tArmed = armed;
}

void ResetAllocationCount()
{
    gSourceCount = 0;
    std::memset(gSources, 0, sizeof gSources);
}

std::vector<SAllocationSource> AllocationSources()
{
    std::vector<SAllocationSource> out;
    for (int i = 0; i < gSourceCount; ++i) {
        SAllocationSource s{gSources[i].library, gSources[i].allocations, gSources[i].frees, {}};
        if (char** names = backtrace_symbols(gSources[i].stack, gSources[i].depth)) {
            for (int f = 0; f < gSources[i].depth; ++f)
                s.firstStack.push_back(names[f]);
            free(names);
        }
        out.push_back(std::move(s));
    }
    return out;
}

void RecordAllocationEvent(bool isFree)
{
    if (!tArmed || tInside)
        return;
    tInside = true;
    void* frames[kMaxFrames];
    const int depth = backtrace(frames, kMaxFrames);
    // Frame 0 is this function, frame 1 the hook that called it (in a
    // sanitizer build possibly gone to a tail call: then a runtime frame).
    // Then comes the allocator (C or C++ runtime, or a sanitizer's) and
    // then whoever asked. That may be aaxhost itself, answering a call the
    // plug-in made into the host.
    const char* source = "(unknown)";
    const char* self = ExecutablePath();
    for (int i = 2; i < depth; ++i) {
        Dl_info info{};
        if (!dladdr(frames[i], &info) || !info.dli_fname || IsRuntime(info.dli_fname))
            continue;
        source = std::strcmp(info.dli_fname, self) == 0 ? kHostSource : info.dli_fname;
        break;
    }
    Count(source, isFree, frames + 2, depth > 2 ? depth - 2 : 0);
    tInside = false;
}

}  // namespace AAXHost
