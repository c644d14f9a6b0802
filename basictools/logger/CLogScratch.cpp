#include "logger/CLogScratch.h"

#include <memory>

CLogScratch::CLogScratch()
    : mMessageBuf(mMessageStorage, kCapacity),
      mLineBuf(mLineStorage, kCapacity),
      mMessageStream(&mMessageBuf),
      mLineStream(&mLineBuf)
{
}

namespace {

// Trivially destructible, so still readable while the thread's other
// thread-local objects are being destroyed.
thread_local bool tScratchGone = false;

// Heap-held so that the 20 KB never sits in a loadable module's TLS block.
struct ScratchHolder {
    std::unique_ptr<CLogScratch> mScratch;
    ~ScratchHolder() { tScratchGone = true; }
};
thread_local ScratchHolder tHolder;

}  // namespace

CLogScratch* CLogScratch::Acquire()
{
    // A line logged from a thread-exit destructor takes the slower path.
    if (tScratchGone)
        return nullptr;
    if (!tHolder.mScratch)
        tHolder.mScratch.reset(new CLogScratch());
    if (tHolder.mScratch->mBusy)
        return nullptr;
    tHolder.mScratch->mBusy = true;
    return tHolder.mScratch.get();
}
