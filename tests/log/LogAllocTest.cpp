// The logging calls that the audio thread makes must not allocate: counted
// here through a replaced global allocator.
#include <gtest/gtest.h>

#include <cstdlib>
#include <new>

#include "LogTestSupport.h"

// Per thread: the writer thread's printing may allocate, the caller's may not.
static thread_local long tAllocations = 0;

void* operator new(std::size_t size)
{
    ++tAllocations;
    if (void* p = std::malloc(size == 0 ? 1 : size))
        return p;
    throw std::bad_alloc();
}
void operator delete(void* p) noexcept { std::free(p); }
void operator delete(void* p, std::size_t) noexcept { std::free(p); }

TEST(LogAllocations, FilteredAndRecordedLinesDoNotAllocate)
{
    CTempDir dir;
    CoutCapture capture;
    CSingleton<CLog>::getInstance()->reloadConf(dir.WriteFile("log.conf", "process info\n"));
    const std::string name = "osc";
    // The first recorded line of a thread sets up its formatting memory.
    MV_LOG("process", kLogInfo, "warm up");

    const long before = tAllocations;
    // Few enough lines that the ring never overruns (whose warning allocates).
    for (int i = 0; i < 40; ++i) {
        MV_LOG("midi", kLogError, "unknown category ", name, " ", i, " ", 0.5);
        MV_LOG("a-category-longer-than-any-short-string", kLogError, "unknown ", i);
        MV_LOG("process", kLogDebug, "below level ", name, " ", i);
        MV_LOG("process", kLogInfo, "recorded ", name, " ", i, " ", 0.25f, ' ', true);
        MV_LOG_AT("process", kLogWarning, "Process", "at ", i);
    }
    EXPECT_EQ(tAllocations - before, 0);
    CSingleton<CLog>::destroyInstance();
    EXPECT_EQ(CountOccurrences(capture.text(), "[LOG] "), 81u);
}
