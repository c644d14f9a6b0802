// Flush-to-zero and denormals-are-zero for the length of one plug-in call,
// as mainstream hosts set them: plug-ins whose feedback paths decay into
// denormals would otherwise cost many times their usual CPU. The caller's
// mode is put back on leaving, so the AAX host's own code is untouched.
// Two register accesses each way, no allocation.
#pragma once

#include <cstdint>

#if defined(__SSE__) || defined(__x86_64__)
#include <xmmintrin.h>
#endif

class CDenormalScope {
public:
    explicit CDenormalScope(bool enable)
    {
        if (!enable)
            return;
        mActive = true;
#if defined(__SSE__) || defined(__x86_64__)
        // FTZ is bit 15 and DAZ bit 6 of MXCSR.
        mSaved = _mm_getcsr();
        _mm_setcsr(mSaved | 0x8040u);
#elif defined(__aarch64__)
        uint64_t fpcr = 0;
        __asm__ __volatile__("mrs %0, fpcr" : "=r"(fpcr));
        mSaved = fpcr;
        // FZ (bit 24) flushes both inputs and results on AArch64.
        fpcr |= uint64_t{1} << 24;
        __asm__ __volatile__("msr fpcr, %0" : : "r"(fpcr));
#endif
    }
    ~CDenormalScope()
    {
        if (!mActive)
            return;
#if defined(__SSE__) || defined(__x86_64__)
        _mm_setcsr(static_cast<unsigned>(mSaved));
#elif defined(__aarch64__)
        __asm__ __volatile__("msr fpcr, %0" : : "r"(mSaved));
#endif
    }
    CDenormalScope(const CDenormalScope&) = delete;
    CDenormalScope& operator=(const CDenormalScope&) = delete;

private:
    uint64_t mSaved = 0;
    bool mActive = false;
};
