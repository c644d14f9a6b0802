#include "AllocationCounter.h"

#include <execinfo.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <new>

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* pointer, size_t size);
}

namespace {

// Plain thread-locals of the executable: reading them never allocates.
thread_local bool tArmed = false;
thread_local bool tTracing = false;
thread_local uint64_t tNews = 0;
thread_local uint64_t tMallocs = 0;
int gTraceLimit = 0;
int gTraced = 0;

void TraceAllocation(const char* what, size_t size)
{
    if (gTraced >= gTraceLimit || tTracing)
        return;
    tTracing = true;
    ++gTraced;
    char line[96];
    const int n = std::snprintf(line, sizeof line, "allocation %d inside a measured call: %s(%zu)\n", gTraced, what, size);
    if (n > 0)
        (void)!write(STDERR_FILENO, line, static_cast<size_t>(n));
    void* frames[24];
    const int depth = backtrace(frames, 24);
    backtrace_symbols_fd(frames, depth, STDERR_FILENO);
    tTracing = false;
}

inline void CountMalloc(const char* what, size_t size)
{
    if (!tArmed)
        return;
    ++tMallocs;
    if (gTraceLimit > 0)
        TraceAllocation(what, size);
}

void* NewOrThrow(size_t size)
{
    if (tArmed)
        ++tNews;
    if (void* p = std::malloc(size ? size : 1))
        return p;
    throw std::bad_alloc();
}

void* AlignedNewOrThrow(size_t size, std::align_val_t align)
{
    if (tArmed)
        ++tNews;
    const size_t alignment = static_cast<size_t>(align);
    const size_t rounded = (size + alignment - 1) / alignment * alignment;
    if (void* p = std::aligned_alloc(alignment, rounded ? rounded : alignment))
        return p;
    throw std::bad_alloc();
}

}  // namespace

// The C allocator, interposed for the whole process (glibc supports
// replacing these in the executable); the work is left to glibc's own.
extern "C" void* malloc(size_t size) noexcept
{
    CountMalloc("malloc", size);
    return __libc_malloc(size);
}

extern "C" void* calloc(size_t count, size_t size) noexcept
{
    CountMalloc("calloc", count * size);
    return __libc_calloc(count, size);
}

extern "C" void* realloc(void* pointer, size_t size) noexcept
{
    CountMalloc("realloc", size);
    return __libc_realloc(pointer, size);
}

void* operator new(size_t size) { return NewOrThrow(size); }
void* operator new[](size_t size) { return NewOrThrow(size); }
void* operator new(size_t size, const std::nothrow_t&) noexcept
{
    try {
        return NewOrThrow(size);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](size_t size, const std::nothrow_t&) noexcept
{
    try {
        return NewOrThrow(size);
    } catch (...) {
        return nullptr;
    }
}
void* operator new(size_t size, std::align_val_t align) { return AlignedNewOrThrow(size, align); }
void* operator new[](size_t size, std::align_val_t align) { return AlignedNewOrThrow(size, align); }
void* operator new(size_t size, std::align_val_t align, const std::nothrow_t&) noexcept
{
    try {
        return AlignedNewOrThrow(size, align);
    } catch (...) {
        return nullptr;
    }
}
void* operator new[](size_t size, std::align_val_t align, const std::nothrow_t&) noexcept
{
    try {
        return AlignedNewOrThrow(size, align);
    } catch (...) {
        return nullptr;
    }
}

void operator delete(void* p) noexcept { std::free(p); }
void operator delete[](void* p) noexcept { std::free(p); }
void operator delete(void* p, size_t) noexcept { std::free(p); }
void operator delete[](void* p, size_t) noexcept { std::free(p); }
void operator delete(void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete(void* p, std::align_val_t) noexcept { std::free(p); }
void operator delete[](void* p, std::align_val_t) noexcept { std::free(p); }
void operator delete(void* p, size_t, std::align_val_t) noexcept { std::free(p); }
void operator delete[](void* p, size_t, std::align_val_t) noexcept { std::free(p); }
void operator delete(void* p, std::align_val_t, const std::nothrow_t&) noexcept { std::free(p); }
void operator delete[](void* p, std::align_val_t, const std::nothrow_t&) noexcept { std::free(p); }

namespace BenchProcess {

CAllocationScope::CAllocationScope()
{
    mStart.news = tNews;
    mStart.mallocs = tMallocs;
    tArmed = true;
}

CAllocationScope::~CAllocationScope() { tArmed = false; }

SAllocationCount CAllocationScope::Count() const
{
    return {tNews - mStart.news, tMallocs - mStart.mallocs};
}

void SetAllocationTraceLimit(int limit)
{
    if (limit > 0) {
        // backtrace() loads its unwinder on first use; do that before any
        // measured call so the trace itself is never counted.
        void* frame[1];
        backtrace(frame, 1);
    }
    gTraceLimit = limit;
}

}  // namespace BenchProcess
