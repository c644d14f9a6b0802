// The allocation hooks behind AllocationCount: linked into the aaxhost
// executable only. A normal build replaces the C allocator's entry points
// (the executable comes first in symbol lookup, so every loaded plug-in
// calls these) and forwards to glibc's own; a sanitizer build owns malloc
// already and offers hooks instead.
#include <cstddef>

#include "AllocationCount.h"

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
// The sanitizer runtimes export this; GCC ships no header declaring it.
extern "C" int __sanitizer_install_malloc_and_free_hooks(void (*malloc_hook)(const volatile void*, size_t),
                                                         void (*free_hook)(const volatile void*));

namespace {

// The caller of a hook is the sanitizer's allocator; the walk skips it.
void OnMalloc(const volatile void* p, size_t)
{
    AAXHost::RecordAllocationEvent(false, p, __builtin_return_address(0));
}
void OnFree(const volatile void* p) { AAXHost::RecordAllocationEvent(true, p, __builtin_return_address(0)); }

[[maybe_unused]] const bool kInstalled = [] {
    const bool ok = __sanitizer_install_malloc_and_free_hooks(OnMalloc, OnFree) != 0;
    if (ok)
        AAXHost::MarkAllocationHooksInstalled();
    return ok;
}();

}  // namespace

#else

extern "C" {
void* __libc_malloc(size_t);
void __libc_free(void*);
void* __libc_calloc(size_t, size_t);
void* __libc_realloc(void*, size_t);
void* __libc_memalign(size_t, size_t);
void* __libc_valloc(size_t);
void* __libc_pvalloc(size_t);

// Each entry point passes its own caller: the stack walk starts there.
#define AAXHOST_CALLER __builtin_return_address(0)

namespace {
void* Counted(void* p, const void* caller)
{
    AAXHost::RecordAllocationEvent(false, p, caller);
    return p;
}
}  // namespace

void* malloc(size_t size) { return Counted(__libc_malloc(size), AAXHOST_CALLER); }

void free(void* p)
{
    AAXHost::RecordAllocationEvent(true, p, AAXHOST_CALLER);
    __libc_free(p);
}

void* calloc(size_t n, size_t size) { return Counted(__libc_calloc(n, size), AAXHOST_CALLER); }

void* realloc(void* p, size_t size)
{
    AAXHost::RecordAllocationEvent(true, p, AAXHOST_CALLER);
    return Counted(__libc_realloc(p, size), AAXHOST_CALLER);
}

void* memalign(size_t alignment, size_t size) { return Counted(__libc_memalign(alignment, size), AAXHOST_CALLER); }
void* aligned_alloc(size_t alignment, size_t size) { return Counted(__libc_memalign(alignment, size), AAXHOST_CALLER); }

int posix_memalign(void** out, size_t alignment, size_t size)
{
    if (alignment < sizeof(void*) || (alignment & (alignment - 1)) != 0)
        return 22;  // EINVAL
    void* p = Counted(__libc_memalign(alignment, size), AAXHOST_CALLER);
    if (!p)
        return 12;  // ENOMEM
    *out = p;
    return 0;
}

void* valloc(size_t size) { return Counted(__libc_valloc(size), AAXHOST_CALLER); }
void* pvalloc(size_t size) { return Counted(__libc_pvalloc(size), AAXHOST_CALLER); }
}

namespace {
[[maybe_unused]] const bool kInstalled = (AAXHost::MarkAllocationHooksInstalled(), true);
}

#endif
