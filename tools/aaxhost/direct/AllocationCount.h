// Counts heap allocations and frees made on one thread while it is armed
// (the audio thread, around the process call), and tells which library
// made each: the wrapper bundle or the plug-in it hosts. The one counter of
// the project: aaxhost validate, the bench and the tests' real-time checks.
//
// The hooks come from MallocInterposer.cpp (target
// aaxhost_allocation_hooks), linked into executables only: it replaces
// malloc and friends (or, in a sanitizer build, installs the sanitizer's
// allocation hooks). operator new reaches them through malloc.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace AAXHost {

struct SAllocationSource {
    // File of the first caller outside the C and C++ runtimes, or "aaxhost"
    // for the host's own code.
    std::string library;
    uint64_t allocations = 0;
    uint64_t frees = 0;
    std::vector<std::string> firstStack;  // where its first event came from, innermost first
};

// True when the executable carries the hooks.
bool AllocationCountingAvailable();
// Arms or disarms counting for the calling thread. Arming first warms up the
// stack walker, whose first use allocates.
void ArmAllocationCount(bool armed);
void ResetAllocationCount();
std::vector<SAllocationSource> AllocationSources();

// Allocations the calling thread made while armed, over the process's
// life: a running total that never resets, so scopes can nest.
uint64_t ThreadAllocationTotal();

// Counting armed on the calling thread for the scope's life. Cheap enough
// to open around every measured call.
class CAllocationScope {
public:
    CAllocationScope();
    ~CAllocationScope();
    CAllocationScope(const CAllocationScope&) = delete;
    CAllocationScope& operator=(const CAllocationScope&) = delete;
    // Allocations made since the scope opened.
    uint64_t Allocations() const { return ThreadAllocationTotal() - mStart; }

private:
    bool mWasArmed;
    uint64_t mStart;
};

// Called by the hooks.
void MarkAllocationHooksInstalled();
// caller: the return address of the hook's own call, where the stack walk
// starts (the hook's frames above it vary with the build).
void RecordAllocationEvent(bool isFree, const volatile void* pointer, const void* caller);

}  // namespace AAXHost
