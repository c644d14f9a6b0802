// Several threads logging while the configuration is reloaded: every line
// arrives once, in each thread's order. Run it under TSan as well.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <memory>
#include <thread>
#include <vector>

#include "LogTestSupport.h"
#include "logger/CLog.h"

TEST(LogThreads, ConcurrentLoggingAndReloadsLoseNothing)
{
    constexpr int kThreads = 8;
    constexpr int kLines = 60;
    CTempDir dir;
    const std::string conf = dir.WriteFile("log.conf", "process debug\ngui debug\n");
    CoutCapture capture;
    {
        CLog log;
        log.reloadConf(conf);
        std::atomic<int> running{kThreads};
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([&log, &running, t] {
                for (int i = 0; i < kLines; ++i) {
                    log.buildLog("process", kLogInfo, "thread ", t, " line ", i, " end");
                    log.buildLog("filtered", kLogError, "never");
                    // Paced well below what a ring holds per writer period.
                    std::this_thread::sleep_for(std::chrono::milliseconds(3));
                }
                --running;
            });
        // Same categories each time, so no line may be dropped by a reload.
        while (running.load() > 0) {
            log.reloadConf(conf);
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        for (auto& thread : threads)
            thread.join();
    }
    const std::string text = capture.text();
    EXPECT_EQ(text.find(" [WRITE]"), std::string::npos);
    EXPECT_EQ(text.find("never"), std::string::npos);
    EXPECT_EQ(CountOccurrences(text, "[LOG] "), static_cast<size_t>(kThreads * kLines));
    for (int t = 0; t < kThreads; ++t) {
        size_t previous = 0;
        for (int i = 0; i < kLines; ++i) {
            const std::string body = "| thread " + std::to_string(t) + " line " + std::to_string(i) + " end\n";
            const size_t at = text.find(body);
            ASSERT_NE(at, std::string::npos) << body;
            EXPECT_GT(at, previous);
            previous = at;
        }
    }
}
