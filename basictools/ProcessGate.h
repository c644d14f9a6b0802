// Lets the main thread change what the real-time thread works on without the
// real-time thread ever waiting: the audio side only counts itself in and
// out, and stays out (outputs silence) while the gate is closed; closing
// waits until every call that came in before has left.
#pragma once

#include <atomic>
#include <thread>

namespace Morvane {

class CProcessGate {
public:
    // Real-time thread. On true, call Leave() when done.
    bool TryEnter()
    {
        mInFlight.fetch_add(1);
        if (mClosed.load() == 0)
            return true;
        mInFlight.fetch_sub(1);
        return false;
    }
    void Leave() { mInFlight.fetch_sub(1); }

    // Main thread. Sequentially consistent on both sides, so a call either
    // sees the gate closed or is counted before Close() stops waiting.
    void Close()
    {
        mClosed.fetch_add(1);
        while (mInFlight.load() != 0)
            std::this_thread::yield();
    }
    void Open() { mClosed.fetch_sub(1); }

private:
    std::atomic<int> mClosed{0};
    std::atomic<int> mInFlight{0};
};

// Leaves a gate entered with TryEnter at the end of a scope, also when an
// exception ends it.
class CProcessGateLeave {
public:
    explicit CProcessGateLeave(CProcessGate& gate) : mGate(&gate) {}
    // A null gate: nothing was entered, nothing to leave.
    explicit CProcessGateLeave(CProcessGate* gate) : mGate(gate) {}
    ~CProcessGateLeave()
    {
        if (mGate != nullptr)
            mGate->Leave();
    }
    CProcessGateLeave(const CProcessGateLeave&) = delete;
    CProcessGateLeave& operator=(const CProcessGateLeave&) = delete;

private:
    CProcessGate* mGate;
};

// Closes a gate for one scope.
class CProcessGateClosed {
public:
    explicit CProcessGateClosed(CProcessGate& gate) : mGate(gate) { mGate.Close(); }
    ~CProcessGateClosed() { mGate.Open(); }
    CProcessGateClosed(const CProcessGateClosed&) = delete;
    CProcessGateClosed& operator=(const CProcessGateClosed&) = delete;

private:
    CProcessGate& mGate;
};

}  // namespace Morvane
