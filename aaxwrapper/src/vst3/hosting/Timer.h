// A periodic timer driving the controller updates.
//
// macOS: a run-loop timer on the main run loop, so onTimer runs on the
// host's main thread like every other controller call.
// Linux: the wrapper has no main-thread run loop to attach to, so the timer
// runs its own thread and calls onTimer from there. Every call is made with
// the timer's callback mutex held; code on the host's main thread that talks
// to the same objects as onTimer takes that mutex too (callbackMutex()), so
// the two never overlap.
// On both, once stop() or the destructor has returned no onTimer call is
// running or will start.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

namespace Morvane {
namespace vst3 {

class Timer;

class ITimerCallback {
public:
    virtual void onTimer(Timer* timer) = 0;

protected:
    virtual ~ITimerCallback() = default;
};

class Timer {
public:
    // Null when the thread cannot be started.
    static std::unique_ptr<Timer> create(ITimerCallback* callback, uint32_t milliseconds);
    ~Timer();

    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    void stop();
    uint32_t interval() const { return mMilliseconds; }
    // Held around every onTimer call.
    std::recursive_mutex& callbackMutex() { return mCallbackMutex; }
#ifdef __APPLE__
    // For the run-loop callback only.
    void fireFromRunLoop() { fire(); }
#endif

private:
    Timer(ITimerCallback* callback, uint32_t milliseconds);
    bool start();
    void fire();
#ifndef __APPLE__
    void run();
#endif

    ITimerCallback* mCallback;
    uint32_t mMilliseconds;
    std::recursive_mutex mCallbackMutex;
#ifdef __APPLE__
    void* mRunLoopTimer = nullptr;  // CFRunLoopTimerRef
#else
    std::mutex mStopMutex;
    std::condition_variable mStopCondition;
    bool mStopRequested = false;
    std::thread mThread;
#endif
};

}  // namespace vst3
}  // namespace Morvane
