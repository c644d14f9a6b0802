// Counts heap allocations and frees made on one thread while it is armed
// (the audio thread, around the process call), and tells which library
// made each: the wrapper bundle or the plug-in it hosts.
//
// The hooks come from MallocInterposer.cpp, linked into the aaxhost
// executable only: it replaces malloc and friends (or, in a sanitizer
// build, installs the sanitizer's allocation hooks).
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

// Called by the hooks.
void MarkAllocationHooksInstalled();
// caller: the return address of the hook's own call, where the stack walk
// starts (the hook's frames above it vary with the build).
void RecordAllocationEvent(bool isFree, const volatile void* pointer, const void* caller);

}  // namespace AAXHost
