#include "AAX_CMutex.h"

bool AAX_CMutex::Lock()
{
    const std::thread::id self = std::this_thread::get_id();
    if (mOwner.load() == self) return false;
    mMutex.lock();
    mOwner.store(self);
    return true;
}

void AAX_CMutex::Unlock()
{
    if (mOwner.load() != std::this_thread::get_id()) return;
    mOwner.store(std::thread::id());
    mMutex.unlock();
}

bool AAX_CMutex::Try_Lock()
{
    const std::thread::id self = std::this_thread::get_id();
    if (mOwner.load() == self) return false;
    if (!mMutex.try_lock()) return false;
    mOwner.store(self);
    return true;
}
