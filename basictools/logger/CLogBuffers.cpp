#include "logger/CLogBuffers.h"

#include <new>

#include <chrono>
#include <cstring>
#include <exception>
#include <iostream>

#include "Locations.h"

CLogBuffers::CLogBuffers(std::chrono::milliseconds period)
    : mLibraryPath(Morvane::GetDyLibFullPath()), mPeriod(period), mData(new char[kDataSize]())
{
}

CLogBuffers::~CLogBuffers()
{
    try {
        StopWorkingThread();
        // A line queued while the last writer was being stopped did not see
        // it stop; no writer runs now, so take it here rather than lose it.
        DrainAll();
    } catch (...) {
        std::terminate();
    }
}

uint64_t CLogBuffers::CurrentThreadKey()
{
    static std::atomic<uint64_t> sNextKey{1};
    thread_local const uint64_t tKey = sNextKey.fetch_add(1, std::memory_order_relaxed);
    return tKey;
}

std::mutex& CLogBuffers::OutputMutex()
{
    // Never destroyed: the log's own destructor may run among the static
    // destructors, after a function-local mutex would be gone. Built in
    // static storage rather than on the heap, so that a host loading and
    // unloading the bundle many times leaks nothing.
    alignas(std::mutex) static unsigned char sStorage[sizeof(std::mutex)];
    static std::mutex* const sMutex = new (sStorage) std::mutex;
    return *sMutex;
}

int CLogBuffers::FindRing(uint64_t threadKey)
{
    for (int k = 0; k < kRingCount; ++k) {
        RingDescriptor& ring = mRings[k];
        if (ring.mInUse.load(std::memory_order_acquire)) {
            if (ring.mOwner.load(std::memory_order_relaxed) == threadKey)
                return k;
            continue;
        }
        // The owner is claimed by compare-and-swap so that two threads
        // racing for the same free ring can never end up sharing it.
        uint64_t expected = 0;
        if (ring.mOwner.compare_exchange_strong(expected, threadKey, std::memory_order_acq_rel)) {
            ring.mInUse.store(true, std::memory_order_release);
            return k;
        }
    }
    return -1;
}

void CLogBuffers::WriteDataInBuffer(const char* data, int32_t length)
{
    if (data == nullptr || length <= 0)
        return;
    // Longer lines are cut by the caller; this keeps a ring from ever being
    // asked to hold more than it can.
    const int64_t n = length < kRingSize ? length : kRingSize - 1;
    StartWorkingThread();

    const int k = FindRing(CurrentThreadKey());
    if (k < 0) {
        std::lock_guard<std::mutex> lock(OutputMutex());
        std::cout << "WARNING : TOO MANY THREADS ARE WORKING TOGETHER- LOG CAN BE CORRUPTED." << std::endl;
        std::cout.write(data, n);
        std::cout << std::endl;
        return;
    }

    RingDescriptor& ring = mRings[k];
    char* base = mData.get() + k * kRingSize;
    const int64_t w = ring.mWritePos.load(std::memory_order_relaxed);
    const int64_t r = ring.mReadPos.load(std::memory_order_acquire);
    const int64_t e = w + n;
    if ((w < r && e > r) || (w > r && e > r + kRingSize)) {
        std::lock_guard<std::mutex> lock(OutputMutex());
        std::cout << " [WRITE] Writing too fast, no time to read ! Msg: ";
        std::cout.write(data, n);
        std::cout << std::endl;
    }
    if (e <= kRingSize) {
        std::memcpy(base + w, data, static_cast<size_t>(n));
        ring.mWritePos.store(e, std::memory_order_release);
    } else {
        const int64_t head = kRingSize - w;
        std::memcpy(base + w, data, static_cast<size_t>(head));
        std::memcpy(base, data + head, static_cast<size_t>(n - head));
        ring.mWritePos.store(e - kRingSize, std::memory_order_release);
    }
}

void CLogBuffers::StartWorkingThread()
{
    if (mRunning.load(std::memory_order_acquire))
        return;
    std::lock_guard<std::mutex> lock(mThreadMutex);
    // Tested again under the lock: two threads may find no writer at once.
    if (mWriter.valid())
        return;
    {
        std::lock_guard<std::mutex> out(OutputMutex());
        std::cout << "LOG - START THREAD " << static_cast<const void*>(this) << std::endl;
    }
    {
        std::lock_guard<std::mutex> sleep(mSleepMutex);
        mStop.store(false, std::memory_order_release);
    }
    mWriter = std::async(std::launch::async, [this] { WriterLoop(); });
    mRunning.store(true, std::memory_order_release);
}

void CLogBuffers::StopWorkingThread()
{
    std::unique_lock<std::mutex> lock(mThreadMutex);
    if (!mWriter.valid())
        return;
    {
        std::lock_guard<std::mutex> out(OutputMutex());
        std::cout << "LOG - STOP THREAD asked " << static_cast<const void*>(this) << std::endl;
    }
    {
        std::lock_guard<std::mutex> sleep(mSleepMutex);
        mStop.store(true, std::memory_order_release);
    }
    mWake.notify_all();
    mWriter.get();
    mRunning.store(false, std::memory_order_release);
    lock.unlock();
    std::lock_guard<std::mutex> out(OutputMutex());
    std::cout << "LOG FLUSH DONE " << static_cast<const void*>(this) << std::endl;
}

void CLogBuffers::WriterLoop()
{
    bool stop = mStop.load(std::memory_order_acquire);
    DrainAll();
    while (!stop) {
        {
            // A stop request wakes the writer at once instead of after the
            // rest of its period; it still drains once more before ending.
            std::unique_lock<std::mutex> sleep(mSleepMutex);
            mWake.wait_for(sleep, mPeriod,
                           [this] { return mStop.load(std::memory_order_acquire); });
        }
        stop = mStop.load(std::memory_order_acquire);
        DrainAll();
    }
}

void CLogBuffers::DrainAll()
{
    for (int k = 0; k < kRingCount; ++k)
        DrainRing(k);
    mDrainPasses.fetch_add(1, std::memory_order_acq_rel);
}

void CLogBuffers::DrainRing(int index)
{
    RingDescriptor& ring = mRings[index];
    if (!ring.mInUse.load(std::memory_order_acquire))
        return;
    const int64_t w = ring.mWritePos.load(std::memory_order_acquire);
    const int64_t r = ring.mReadPos.load(std::memory_order_relaxed);
    if (w == r)
        return;
    const char* base = mData.get() + index * kRingSize;
    char* staging = mData.get() + kRingCount * kRingSize;
    std::memset(staging, 0, static_cast<size_t>(kStagingSize));
    int64_t count = 0;
    if (w < r) {
        std::memcpy(staging, base + r, static_cast<size_t>(kRingSize - r));
        std::memcpy(staging + (kRingSize - r), base, static_cast<size_t>(w));
        count = kRingSize - r + w;
    } else {
        std::memcpy(staging, base + r, static_cast<size_t>(w - r));
        count = w - r;
    }
    ring.mReadPos.store(w, std::memory_order_release);
    std::lock_guard<std::mutex> out(OutputMutex());
    // The staging text ends at its first zero byte; bounded by the count
    // because a full ring leaves no terminating zero inside the block.
    std::cout.write(staging, static_cast<std::streamsize>(strnlen(staging, static_cast<size_t>(count))));
    std::cout.flush();
}
