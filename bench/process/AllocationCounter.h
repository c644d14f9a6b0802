// Counts the heap allocations the calling thread makes while a scope is
// open: operator new (replaced in this program) and the C allocator
// (malloc, calloc, realloc, interposed here), which also sees what the
// bundles and the plug-ins they host allocate.
#pragma once

#include <cstdint>

namespace BenchProcess {

struct SAllocationCount {
    uint64_t news = 0;     // operator new, every form
    uint64_t mallocs = 0;  // malloc, calloc, realloc (operator new included)
};

class CAllocationScope {
public:
    CAllocationScope();
    ~CAllocationScope();
    CAllocationScope(const CAllocationScope&) = delete;
    CAllocationScope& operator=(const CAllocationScope&) = delete;

    SAllocationCount Count() const;

private:
    SAllocationCount mStart;
};

// With a positive limit, the first `limit` allocations made inside a scope
// print a stack trace on standard error, to find out who allocates.
void SetAllocationTraceLimit(int limit);

}  // namespace BenchProcess
