// A mutex whose Lock tells whether it took the lock: a thread that already
// holds it gets false and must not unlock, so nested calls cannot deadlock.
#pragma once

#include <atomic>
#include <mutex>
#include <thread>

class AAX_CMutex {
public:
    AAX_CMutex() = default;
    AAX_CMutex(const AAX_CMutex&) = delete;
    AAX_CMutex& operator=(const AAX_CMutex&) = delete;

    bool Lock();
    void Unlock();
    bool Try_Lock();

private:
    std::mutex mMutex;
    std::atomic<std::thread::id> mOwner{std::thread::id()};
};

// Scoped helper that unlocks only what it locked.
class AAX_StLock_Guard {
public:
    explicit AAX_StLock_Guard(AAX_CMutex& mutex) : mMutex(mutex), mLocked(mutex.Lock()) {}
    ~AAX_StLock_Guard()
    {
        if (mLocked) mMutex.Unlock();
    }
    AAX_StLock_Guard(const AAX_StLock_Guard&) = delete;
    AAX_StLock_Guard& operator=(const AAX_StLock_Guard&) = delete;

private:
    AAX_CMutex& mMutex;
    bool mLocked;
};
