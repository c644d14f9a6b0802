// Per-thread lock-free rings that the logging threads fill, drained to the
// standard output stream by one writer thread.
#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <future>
#include <memory>
#include <mutex>
#include <string>

class CLogBuffers {
public:
    static constexpr int kRingCount = 20;
    static constexpr int64_t kRingSize = 10000;
    static constexpr int64_t kStagingSize = 10000;
    static constexpr int64_t kDataSize = kRingCount * kRingSize + kStagingSize;
    static constexpr int kWriterPeriodMs = 200;

    struct RingDescriptor {
        std::atomic<uint64_t> mOwner{0};
        std::atomic<bool> mInUse{false};
        std::atomic<int64_t> mReadPos{0};
        std::atomic<int64_t> mWritePos{0};
    };

    // The period is a parameter so that tests can hold the writer asleep.
    explicit CLogBuffers(std::chrono::milliseconds period = std::chrono::milliseconds(kWriterPeriodMs));
    ~CLogBuffers();
    CLogBuffers(const CLogBuffers&) = delete;
    CLogBuffers& operator=(const CLogBuffers&) = delete;

    // Queues one line (at most kRingSize - 1 bytes) into the calling thread's ring.
    void WriteDataInBuffer(const char* data, int32_t length);
    void StartWorkingThread();
    void StopWorkingThread();

    const std::string& GetLibraryPath() const { return mLibraryPath; }
    bool IsWriterRunning() const { return mRunning.load(std::memory_order_acquire); }
    // Observation points for tests and diagnostics.
    const RingDescriptor& GetRing(int index) const { return mRings[index]; }
    const char* GetRingData(int index) const { return mData.get() + index * kRingSize; }
    // Completed passes over all rings since construction.
    uint64_t GetDrainPasses() const { return mDrainPasses.load(std::memory_order_acquire); }

    // Never reused while the process lives, unlike pthread handles, so a ring
    // can never be inherited by a later thread.
    static uint64_t CurrentThreadKey();
    // Serialises the log's own writes to std::cout (writer, banners, warnings).
    static std::mutex& OutputMutex();

private:
    int FindRing(uint64_t threadKey);
    void WriterLoop();
    void DrainAll();
    void DrainRing(int index);

    std::string mLibraryPath;
    std::chrono::milliseconds mPeriod;
    std::atomic<uint64_t> mDrainPasses{0};
    std::mutex mThreadMutex;
    std::atomic<bool> mStop{true};
    std::future<void> mWriter;
    std::atomic<bool> mRunning{false};
    std::mutex mSleepMutex;
    std::condition_variable mWake;
    std::unique_ptr<char[]> mData;
    RingDescriptor mRings[kRingCount];
};
