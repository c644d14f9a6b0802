// Instructions retired between Start and Stop, added up over many calls:
// from the CPU's own counter where the kernel offers it, else from callgrind
// when the program runs under it (scripts/bench --instructions).
#pragma once

#include <cstdint>
#include <string>

namespace BenchOverhead {

class CInstructionCounter {
public:
    // False, with the reason, when neither source is there.
    bool Open(std::string& error);
    const char* Source() const { return mCallgrind ? "callgrind" : "hardware counter"; }

    // A new total, at zero.
    void Reset();
    void Start();
    void Stop();
    // The total since Reset, less what Start and Stop themselves cost.
    bool Total(uint64_t& instructions, std::string& error);

private:
    bool ReadHardware(uint64_t& value) const;
    bool ReadCallgrindDump(uint64_t& instructions, std::string& error);

    bool mCallgrind = false;
    int mFd = -1;
    uint64_t mStarted = 0;
    uint64_t mTotal = 0;
    uint64_t mPairs = 0;
    // What one empty Start/Stop pair counts, measured at Open.
    double mPairCost = 0.0;
    std::string mDumpBase;  // callgrind's output file; dump n goes to <base>.<n>
    int mDumps = 0;
};

}  // namespace BenchOverhead
