// The threads check's audio thread, for bundle and direct host alike: it
// plays buffers until stopped, and stops by itself in time for a hung main
// thread to stop the watchdog's clock.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <thread>

#include "ValidationContext.h"

namespace AAXHost {

class CAudioLoop {
public:
    template <typename PlayOneBuffer>
    CAudioLoop(const CValidationContext& context, PlayOneBuffer play)
    {
        using Clock = std::chrono::steady_clock;
        const double latest = context.Plan().threadSeconds + context.Config().timeout * 0.5 + 1.0;
        const auto deadline =
            Clock::now() + std::chrono::duration_cast<Clock::duration>(std::chrono::duration<double>(latest));
        mThread = std::thread([this, deadline, play]() mutable {
            while (!mStop.load(std::memory_order_acquire) && Clock::now() < deadline) {
                play();
                mBuffers.fetch_add(1, std::memory_order_relaxed);
            }
        });
    }
    ~CAudioLoop() { Stop(); }
    CAudioLoop(const CAudioLoop&) = delete;
    CAudioLoop& operator=(const CAudioLoop&) = delete;

    void Stop()
    {
        mStop.store(true, std::memory_order_release);
        if (mThread.joinable())
            mThread.join();
    }
    int64_t Buffers() const { return mBuffers.load(std::memory_order_relaxed); }

private:
    std::atomic<bool> mStop{false};
    std::atomic<int64_t> mBuffers{0};
    std::thread mThread;
};

}  // namespace AAXHost
