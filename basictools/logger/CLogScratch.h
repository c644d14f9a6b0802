// Per-thread formatting memory of the log: a message stream and a line stream
// over fixed buffers, allocated once per thread on its first recorded line.
#pragma once

#include <ostream>

#include "logger/CFixedStreamBuf.h"

class CLogScratch {
public:
    // Longest line kept by the rings; anything past it is cut anyway.
    static constexpr std::size_t kCapacity = 9999;

    // The calling thread's scratch, or null while it is already in use
    // (a message part that itself logs while being streamed).
    static CLogScratch* Acquire();
    void Release() { mBusy = false; }

    std::ostream& BeginMessage() { return begin(mMessageBuf, mMessageStream); }
    std::ostream& BeginLine() { return begin(mLineBuf, mLineStream); }
    const CFixedStreamBuf& Message() const { return mMessageBuf; }
    const CFixedStreamBuf& Line() const { return mLineBuf; }

    CLogScratch();
    CLogScratch(const CLogScratch&) = delete;
    CLogScratch& operator=(const CLogScratch&) = delete;

private:
    // Same state as a freshly built string stream, whatever the previous
    // message's parts did to it.
    static std::ostream& begin(CFixedStreamBuf& buf, std::ostream& os)
    {
        buf.reset();
        os.clear();
        os.flags(std::ios_base::skipws | std::ios_base::dec);
        os.width(0);
        os.precision(6);
        os.fill(' ');
        return os;
    }

    char mMessageStorage[kCapacity];
    char mLineStorage[kCapacity];
    CFixedStreamBuf mMessageBuf;
    CFixedStreamBuf mLineBuf;
    std::ostream mMessageStream;
    std::ostream mLineStream;
    bool mBusy = false;

    friend class CLogScratchGuard;
};

// Releases the scratch even when a part's stream operator throws.
class CLogScratchGuard {
public:
    explicit CLogScratchGuard(CLogScratch* scratch) : mScratch(scratch) {}
    ~CLogScratchGuard()
    {
        if (mScratch != nullptr)
            mScratch->Release();
    }
    CLogScratchGuard(const CLogScratchGuard&) = delete;
    CLogScratchGuard& operator=(const CLogScratchGuard&) = delete;

private:
    CLogScratch* mScratch;
};
