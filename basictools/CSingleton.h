// Process-wide lazily created instance of T, destroyed with the other static
// objects at unload (or earlier through destroyInstance()).
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

template <typename T>
class CSingleton {
public:
    // The fast path reads an atomic mirror of the owning pointer, so threads
    // that find the instance already built never take the mutex.
    static T* getInstance()
    {
        T* instance = mInstance.load(std::memory_order_acquire);
        if (instance != nullptr)
            return instance;
        std::lock_guard<std::mutex> lock(mMutex);
        if (!m_pSingleton) {
            m_pSingleton.reset(new T());
            mInstance.store(m_pSingleton.get(), std::memory_order_release);
        }
        return m_pSingleton.get();
    }

    // Callers must make sure no other thread still uses the instance.
    static void destroyInstance()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mInstance.store(nullptr, std::memory_order_release);
        m_pSingleton.reset();
    }

    CSingleton() = delete;

private:
    static inline std::unique_ptr<T> m_pSingleton;
    static inline std::mutex mMutex;
    static inline std::atomic<T*> mInstance{nullptr};
};
