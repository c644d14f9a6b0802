// Which thread may call what, checked where it matters. The real-time
// callback opens a real-time scope; main-thread entry points say so, and a
// main-thread call made from inside a real-time scope (or the reverse) stops
// the process with both places named, so a wrong-thread call fails a test
// instead of racing in a studio. Checks are compiled in when
// MORVANE_THREAD_CHECKS is 1 (debug, test and sanitizer builds) and cost
// nothing otherwise.
#pragma once

#ifndef MORVANE_THREAD_CHECKS
#define MORVANE_THREAD_CHECKS 0
#endif

#if MORVANE_THREAD_CHECKS
#include <cstdio>
#include <cstdlib>
#endif

namespace Morvane {
namespace threadrole {

#if MORVANE_THREAD_CHECKS

struct SThreadState {
    int realTimeDepth = 0;
    int mainDepth = 0;
    const char* realTimeWhere = nullptr;
    const char* mainWhere = nullptr;
    int audioByDesign = 0;  // calls the design puts on the audio thread
};

inline SThreadState& State()
{
    static thread_local SThreadState state;
    return state;
}

[[noreturn]] inline void Violation(const char* expected, const char* where, const char* inside)
{
    std::fprintf(stderr, "thread-role violation: %s call \"%s\" made inside \"%s\"\n", expected, where,
                 inside ? inside : "?");
    std::fflush(stderr);
    std::abort();
}

// The calling thread is the audio thread from here to the end of the scope.
class CRealTimeScope {
public:
    explicit CRealTimeScope(const char* where)
    {
        SThreadState& s = State();
        if (s.mainDepth > 0)
            Violation("real-time", where, s.mainWhere);
        if (s.realTimeDepth++ == 0)
            s.realTimeWhere = where;
    }
    ~CRealTimeScope() { --State().realTimeDepth; }
    CRealTimeScope(const CRealTimeScope&) = delete;
    CRealTimeScope& operator=(const CRealTimeScope&) = delete;
};

// A main-thread operation from here to the end of the scope.
class CMainThreadScope {
public:
    explicit CMainThreadScope(const char* where)
    {
        SThreadState& s = State();
        if (s.realTimeDepth > 0 && s.audioByDesign == 0)
            Violation("main-thread", where, s.realTimeWhere);
        if (s.mainDepth++ == 0)
            s.mainWhere = where;
    }
    ~CMainThreadScope() { --State().mainDepth; }
    CMainThreadScope(const CMainThreadScope&) = delete;
    CMainThreadScope& operator=(const CMainThreadScope&) = delete;
};

// A call that the design deliberately makes from the audio thread although
// it would otherwise belong to the main thread (the reason is the argument).
class CAudioThreadByDesign {
public:
    explicit CAudioThreadByDesign(const char* /*why*/) { ++State().audioByDesign; }
    ~CAudioThreadByDesign() { --State().audioByDesign; }
    CAudioThreadByDesign(const CAudioThreadByDesign&) = delete;
    CAudioThreadByDesign& operator=(const CAudioThreadByDesign&) = delete;
};

inline bool InRealTime() { return State().realTimeDepth > 0; }

#else

class CRealTimeScope {
public:
    explicit CRealTimeScope(const char*) {}
};
class CMainThreadScope {
public:
    explicit CMainThreadScope(const char*) {}
};
class CAudioThreadByDesign {
public:
    explicit CAudioThreadByDesign(const char*) {}
};
inline bool InRealTime() { return false; }

#endif

}  // namespace threadrole
}  // namespace Morvane

#define MV_THREAD_CONCAT2(a, b) a##b
#define MV_THREAD_CONCAT(a, b) MV_THREAD_CONCAT2(a, b)
// One-line markers for entry points.
#define MV_MAIN_THREAD(where) \
    const ::Morvane::threadrole::CMainThreadScope MV_THREAD_CONCAT(mvMainScope_, __LINE__)(where)
#define MV_REAL_TIME(where) \
    const ::Morvane::threadrole::CRealTimeScope MV_THREAD_CONCAT(mvRealTimeScope_, __LINE__)(where)
#define MV_AUDIO_THREAD_BY_DESIGN(why) \
    const ::Morvane::threadrole::CAudioThreadByDesign MV_THREAD_CONCAT(mvByDesign_, __LINE__)(why)
