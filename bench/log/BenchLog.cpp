// Cost of logging on the calling thread, and the writer's drain rate.
#include <benchmark/benchmark.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <memory>
#include <streambuf>
#include <thread>
#include <vector>

#include "logger/CLog.h"

namespace {

class NullBuffer : public std::streambuf {
protected:
    int_type overflow(int_type c) override { return traits_type::not_eof(c); }
    std::streamsize xsputn(const char*, std::streamsize n) override { return n; }
};

// A log configured for "process" at "info", with its output discarded; the
// benchmark's own report still goes to the real standard output.
class QuietLog {
public:
    QuietLog() : mPrevious(std::cout.rdbuf(&mNull))
    {
        const char* path = "/tmp/bench_log.conf";
        std::ofstream(path) << "process info\n";
        mLog = std::make_unique<CLog>();
        mLog->reloadConf(path);
    }
    ~QuietLog()
    {
        mLog.reset();
        std::cout.rdbuf(mPrevious);
    }
    CLog& log() { return *mLog; }

    // Empties the rings outside the timed region and leaves a writer asleep
    // in the middle of its period.
    void drain()
    {
        CLogBuffers& buffers = mLog->getBuffers();
        buffers.StopWorkingThread();
        const uint64_t passes = buffers.GetDrainPasses();
        buffers.StartWorkingThread();
        while (buffers.GetDrainPasses() == passes)
            std::this_thread::yield();
    }

private:
    NullBuffer mNull;
    std::streambuf* mPrevious;
    std::unique_ptr<CLog> mLog;
};

// A ring holds about 100 such lines; batches stay below that so that no
// overrun (and its console warning) is ever timed.
constexpr int kBatch = 80;

void BM_RecordedLine(benchmark::State& state)
{
    QuietLog quiet;
    CLog& log = quiet.log();
    int value = 0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        for (int i = 0; i < kBatch; ++i) {
            if (log.isRecorded("process", kLogInfo))
                log.buildLog("process", kLogInfo, "voice ", ++value, " gain ", 0.5f, " on");
        }
        const auto stop = std::chrono::steady_clock::now();
        state.SetIterationTime(std::chrono::duration<double>(stop - start).count() / kBatch);
        quiet.drain();
    }
    state.SetLabel("one recorded line, caller's thread");
}
// Fixed count: each batch restarts the writer, which is not cheap to repeat.
BENCHMARK(BM_RecordedLine)->UseManualTime()->Iterations(3000);

void BM_FilteredLineMacroCheck(benchmark::State& state)
{
    QuietLog quiet;
    CLog& log = quiet.log();
    int value = 0;
    for (auto _ : state) {
        if (log.isRecorded("midi", kLogInfo))
            log.buildLog("midi", kLogInfo, "voice ", ++value, " gain ", 0.5f, " on");
        benchmark::DoNotOptimize(value);
    }
    state.SetLabel("category off, as MV_LOG does it");
}
BENCHMARK(BM_FilteredLineMacroCheck);

void BM_FilteredLineFormattedFirst(benchmark::State& state)
{
    QuietLog quiet;
    CLog& log = quiet.log();
    int value = 0;
    for (auto _ : state) {
        log.buildLog("midi", kLogInfo, "voice ", ++value, " gain ", 0.5f, " on");
        benchmark::DoNotOptimize(value);
    }
    state.SetLabel("category off, buildLog called directly");
}
BENCHMARK(BM_FilteredLineFormattedFirst);

// Eight threads log as fast as their rings allow (each waits while its ring
// lacks room, so nothing is overwritten); the figure is what the writer
// drains per second.
void BM_DrainRateEightThreads(benchmark::State& state)
{
    constexpr int kThreads = 8;
    constexpr int kLinesPerThread = 1500;
    for (auto _ : state) {
        QuietLog quiet;
        CLog& log = quiet.log();
        CLogBuffers& buffers = log.getBuffers();
        const auto start = std::chrono::steady_clock::now();
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([&log, &buffers, t] {
                log.buildLog("process", kLogInfo, "thread ", t, " claims its ring");
                const uint64_t key = CLogBuffers::CurrentThreadKey();
                int ring = 0;
                while (buffers.GetRing(ring).mOwner.load() != key)
                    ++ring;
                const auto& descriptor = buffers.GetRing(ring);
                for (int i = 0; i < kLinesPerThread; ++i) {
                    for (;;) {
                        const int64_t w = descriptor.mWritePos.load();
                        const int64_t r = descriptor.mReadPos.load();
                        const int64_t unread = w >= r ? w - r : CLogBuffers::kRingSize - r + w;
                        if (unread + 200 < CLogBuffers::kRingSize)
                            break;
                        std::this_thread::sleep_for(std::chrono::milliseconds(1));
                    }
                    log.buildLog("process", kLogInfo, "thread ", t, " line ", i, " of the drain benchmark");
                }
            });
        for (auto& thread : threads)
            thread.join();
        buffers.StopWorkingThread();
        const auto stop = std::chrono::steady_clock::now();
        const double seconds = std::chrono::duration<double>(stop - start).count();
        state.SetIterationTime(seconds);
        state.counters["lines_per_second"] = kThreads * (kLinesPerThread + 1) / seconds;
    }
}
BENCHMARK(BM_DrainRateEightThreads)->UseManualTime()->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace

BENCHMARK_MAIN();
