#include "AllocationCount.h"

#include <dlfcn.h>
#include <execinfo.h>

#include <cstdint>
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
// Blocks the armed thread allocated, with the source that did: a free is
// charged to the allocation's source (the call that frees may be a tail
// call, which leaves no frame of the plug-in on the stack).
constexpr int kMaxLive = 4096;
struct SLiveBlock {
    const volatile void* pointer;
    int source;
};
SLiveBlock gLive[kMaxLive];
thread_local bool tArmed = false;
thread_local bool tInside = false;
thread_local uint64_t tTotal = 0;
thread_local bool tWalkerWarm = false;

bool IsRuntime(const char* path)
{
    static const char* const kRuntimes[] = {"/libc.so", "/libstdc++.so", "/libgcc_s.so", "/ld-linux", "/libasan.so",
                                            "/libtsan.so", "/libubsan.so", "/libm.so", "/libpthread.so"};
    for (const char* r : kRuntimes)
        if (std::strstr(path, r))
            return true;
    return false;
}

// The executable: frames in it are aaxhost's own work.
const char* ExecutablePath()
{
    static const char* path = [] {
        Dl_info info{};
        return dladdr(reinterpret_cast<void*>(&ExecutablePath), &info) && info.dli_fname ? info.dli_fname : "";
    }();
    return path;
}

int FindLive(const volatile void* pointer)
{
    const size_t start = (reinterpret_cast<uintptr_t>(pointer) >> 4) % kMaxLive;
    for (size_t i = 0; i < kMaxLive; ++i) {
        const size_t at = (start + i) % kMaxLive;
        if (gLive[at].pointer == pointer)
            return static_cast<int>(at);
        if (!gLive[at].pointer)
            return -1;
    }
    return -1;
}

void AddLive(const volatile void* pointer, int source)
{
    const size_t start = (reinterpret_cast<uintptr_t>(pointer) >> 4) % kMaxLive;
    for (size_t i = 0; i < kMaxLive; ++i) {
        SLiveBlock& b = gLive[(start + i) % kMaxLive];
        if (!b.pointer) {
            b = {pointer, source};
            return;
        }
    }
}

// Open addressing: the entries after a removed one move up where needed.
void RemoveLive(int at)
{
    size_t hole = static_cast<size_t>(at);
    gLive[hole].pointer = nullptr;
    for (size_t next = (hole + 1) % kMaxLive; gLive[next].pointer; next = (next + 1) % kMaxLive) {
        const SLiveBlock moved = gLive[next];
        gLive[next].pointer = nullptr;
        AddLive(moved.pointer, moved.source);
    }
}

int Count(const char* library, bool isFree, void* const* frames, int depth)
{
    for (int i = 0; i < gSourceCount; ++i) {
        if (std::strcmp(gSources[i].library, library) == 0) {
            ++(isFree ? gSources[i].frees : gSources[i].allocations);
            return i;
        }
    }
    // A new library; past the table's end, the last slot takes the rest.
    const bool fresh = gSourceCount < kMaxSources;
    const int slot = fresh ? gSourceCount++ : kMaxSources - 1;
    if (fresh) {
        std::strncpy(gSources[slot].library, library, sizeof gSources[slot].library - 1);
        gSources[slot].library[sizeof gSources[slot].library - 1] = '\0';
        std::memcpy(gSources[slot].stack, frames, sizeof(void*) * static_cast<size_t>(depth));
        gSources[slot].depth = depth;
    }
    ++(isFree ? gSources[slot].frees : gSources[slot].allocations);
    return slot;
}

}  // namespace

bool AllocationCountingAvailable() { return gHooksInstalled; }
void MarkAllocationHooksInstalled() { gHooksInstalled = true; }

void ArmAllocationCount(bool armed)
{
    if (armed && !tWalkerWarm) {
        void* frames[4];
        backtrace(frames, 4);
        ExecutablePath();
        tWalkerWarm = true;
    }
    tArmed = armed;
}

uint64_t ThreadAllocationTotal() { return tTotal; }

CAllocationScope::CAllocationScope() : mWasArmed(tArmed), mStart(tTotal) { ArmAllocationCount(true); }

CAllocationScope::~CAllocationScope() { tArmed = mWasArmed; }

void ResetAllocationCount()
{
    gSourceCount = 0;
    std::memset(gSources, 0, sizeof gSources);
    for (SLiveBlock& b : gLive)
        b.pointer = nullptr;
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

void RecordAllocationEvent(bool isFree, const volatile void* pointer, const void* caller)
{
    if (!tArmed || tInside || !pointer)
        return;
    tInside = true;
    if (!isFree)
        ++tTotal;
    if (isFree) {
        const int live = FindLive(pointer);
        if (live >= 0) {
            ++gSources[gLive[live].source].frees;
            RemoveLive(live);
            tInside = false;
            return;
        }
    }
    void* frames[kMaxFrames];
    const int depth = backtrace(frames, kMaxFrames);
    // The walk starts at the hook's caller: the allocator (C or C++
    // runtime, or a sanitizer's), then whoever asked. That may be aaxhost
    // itself, answering a call the plug-in made into the host.
    int first = 1;
    for (int i = 1; i < depth; ++i)
        if (frames[i] == caller) {
            first = i;
            break;
        }
    const char* source = "(unknown)";
    const char* self = ExecutablePath();
    for (int i = first; i < depth; ++i) {
        Dl_info info{};
        if (!dladdr(frames[i], &info) || !info.dli_fname || IsRuntime(info.dli_fname))
            continue;
        source = std::strcmp(info.dli_fname, self) == 0 ? kHostSource : info.dli_fname;
        break;
    }
    const int counted = Count(source, isFree, frames + first, depth - first);
    if (!isFree)
        AddLive(pointer, counted);
    tInside = false;
}

}  // namespace AAXHost
