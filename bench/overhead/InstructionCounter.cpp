#include "InstructionCounter.h"

#include <linux/perf_event.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <valgrind/callgrind.h>

#include <cstdlib>
#include <cstring>
#include <fstream>
#include <sstream>

namespace BenchOverhead {

namespace {
constexpr int kCalibrationPairs = 1000;
}

bool CInstructionCounter::Open(std::string& error)
{
    if (RUNNING_ON_VALGRIND) {
        // The program cannot ask callgrind for a count; it dumps one and
        // reads the file back, so it must know where callgrind writes.
        const char* base = std::getenv("BENCH_CALLGRIND_OUT");
        if (base == nullptr || *base == '\0') {
            error = "under callgrind, BENCH_CALLGRIND_OUT must name callgrind's --callgrind-out-file";
            return false;
        }
        mCallgrind = true;
        mDumpBase = base;
    } else {
        perf_event_attr attr{};
        attr.type = PERF_TYPE_HARDWARE;
        attr.size = sizeof(attr);
        attr.config = PERF_COUNT_HW_INSTRUCTIONS;
        attr.exclude_kernel = 1;
        attr.exclude_hv = 1;
        mFd = static_cast<int>(syscall(SYS_perf_event_open, &attr, 0, -1, -1, 0));
        if (mFd < 0) {
            error = std::string("no hardware instruction counter here (") + std::strerror(errno) +
                    "): run under callgrind, as scripts/bench --instructions does";
            return false;
        }
    }
    Reset();
    for (int i = 0; i < kCalibrationPairs; ++i) {
        Start();
        Stop();
    }
    uint64_t empty = 0;
    mPairCost = 0.0;
    if (!Total(empty, error))
        return false;
    mPairCost = static_cast<double>(empty) / kCalibrationPairs;
    Reset();
    return true;
}

void CInstructionCounter::Reset()
{
    mTotal = 0;
    mPairs = 0;
    if (mCallgrind)
        CALLGRIND_ZERO_STATS;
}

void CInstructionCounter::Start()
{
    ++mPairs;
    if (mCallgrind) {
        CALLGRIND_TOGGLE_COLLECT;
        return;
    }
    ReadHardware(mStarted);
}

void CInstructionCounter::Stop()
{
    if (mCallgrind) {
        CALLGRIND_TOGGLE_COLLECT;
        return;
    }
    uint64_t now = 0;
    if (ReadHardware(now))
        mTotal += now - mStarted;
}

bool CInstructionCounter::Total(uint64_t& instructions, std::string& error)
{
    uint64_t raw = mTotal;
    if (mCallgrind && !ReadCallgrindDump(raw, error))
        return false;
    const double cost = mPairCost * static_cast<double>(mPairs);
    instructions = static_cast<double>(raw) > cost ? raw - static_cast<uint64_t>(cost) : 0;
    return true;
}

bool CInstructionCounter::ReadHardware(uint64_t& value) const
{
    return mFd >= 0 && read(mFd, &value, sizeof(value)) == static_cast<ssize_t>(sizeof(value));
}

bool CInstructionCounter::ReadCallgrindDump(uint64_t& instructions, std::string& error)
{
    CALLGRIND_DUMP_STATS;
    const std::string path = mDumpBase + "." + std::to_string(++mDumps);
    std::ifstream in(path);
    std::string line;
    while (std::getline(in, line)) {
        // The first event is Ir, the only one collected without cache simulation.
        if (line.rfind("totals:", 0) == 0 || line.rfind("summary:", 0) == 0) {
            std::istringstream fields(line.substr(line.find(':') + 1));
            if (fields >> instructions) {
                // BENCH_CALLGRIND_KEEP=1 keeps the dumps for callgrind_annotate.
                if (std::getenv("BENCH_CALLGRIND_KEEP") == nullptr)
                    std::remove(path.c_str());
                return true;
            }
        }
    }
    error = "no instruction total in callgrind's dump " + path;
    return false;
}

}  // namespace BenchOverhead
