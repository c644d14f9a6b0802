#include "vst3/hosting/Timer.h"

#include <chrono>
#include <system_error>

#ifdef __APPLE__
#include <CoreFoundation/CoreFoundation.h>
#endif

namespace Morvane {
namespace vst3 {

std::unique_ptr<Timer> Timer::create(ITimerCallback* callback, uint32_t milliseconds)
{
    if (!callback || milliseconds == 0)
        return nullptr;
    std::unique_ptr<Timer> timer(new Timer(callback, milliseconds));
    if (!timer->start())
        return nullptr;
    return timer;
}

Timer::Timer(ITimerCallback* callback, uint32_t milliseconds) : mCallback(callback), mMilliseconds(milliseconds) {}

Timer::~Timer() { stop(); }

void Timer::fire()
{
    std::lock_guard<std::recursive_mutex> callbackLock(mCallbackMutex);
    mCallback->onTimer(this);
}

#ifdef __APPLE__

namespace {
void runLoopTimerFired(CFRunLoopTimerRef, void* info) { static_cast<Timer*>(info)->fireFromRunLoop(); }
}  // namespace

bool Timer::start()
{
    CFRunLoopTimerContext context = {0, this, nullptr, nullptr, nullptr};
    const CFTimeInterval period = mMilliseconds / 1000.0;
    CFRunLoopTimerRef timer = CFRunLoopTimerCreate(kCFAllocatorDefault, CFAbsoluteTimeGetCurrent() + period, period, 0,
                                                   0, &runLoopTimerFired, &context);
    if (!timer)
        return false;
    CFRunLoopAddTimer(CFRunLoopGetMain(), timer, kCFRunLoopCommonModes);
    mRunLoopTimer = timer;
    return true;
}

void Timer::stop()
{
    // Called on the main thread, where the timer fires: invalidating it here
    // means no later call.
    if (mRunLoopTimer) {
        CFRunLoopTimerInvalidate(static_cast<CFRunLoopTimerRef>(mRunLoopTimer));
        CFRelease(static_cast<CFRunLoopTimerRef>(mRunLoopTimer));
        mRunLoopTimer = nullptr;
    }
}

#else

bool Timer::start()
{
    try {
        mThread = std::thread(&Timer::run, this);
    } catch (const std::system_error&) {
        return false;
    }
    return true;
}

void Timer::stop()
{
    {
        std::lock_guard<std::mutex> lock(mStopMutex);
        mStopRequested = true;
    }
    mStopCondition.notify_all();
    if (mThread.joinable() && mThread.get_id() != std::this_thread::get_id())
        mThread.join();
}

void Timer::run()
{
    const auto period = std::chrono::milliseconds(mMilliseconds);
    auto next = std::chrono::steady_clock::now() + period;
    std::unique_lock<std::mutex> lock(mStopMutex);
    while (!mStopRequested) {
        if (mStopCondition.wait_until(lock, next, [this] { return mStopRequested; }))
            break;
        lock.unlock();
        fire();
        next += period;
        const auto now = std::chrono::steady_clock::now();
        if (next < now)
            next = now + period;  // after a stall, do not fire a burst
        lock.lock();
    }
}

#endif

}  // namespace vst3
}  // namespace Morvane
