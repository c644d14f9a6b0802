// The log facade: filtering, line layout, cutting, assertions, the macros,
// the singleton and concurrent use (run under TSan as well).
#include <gmock/gmock.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <iomanip>
#include <stdexcept>
#include <thread>

#include "LogTestSupport.h"

using ::testing::AnyOf;
using ::testing::HasSubstr;
using ::testing::Not;

TEST(LogFacade, CategoryLevelDecidesWhatIsRecorded)
{
    LogSession session("gui warning\n");
    for (int level = kLogDebug; level <= kLogAssert; ++level) {
        session.log().buildLog("gui", static_cast<ELogLevel>(level), "gui at ", DicoLog[level]);
        session.log().buildLog("midi", static_cast<ELogLevel>(level), "midi at ", DicoLog[level]);
    }
    CLog& log = session.log();
    EXPECT_TRUE(log.isRecorded("gui", kLogWarning) && !log.isRecorded("gui", kLogNotice));
    EXPECT_FALSE(log.isRecorded("midi", kLogAssert) || log.isRecorded(nullptr, kLogAssert));
    EXPECT_FALSE(log.isRecorded("gui", static_cast<ELogLevel>(9)));
    const auto lines = LinesStartingWith(session.finish(), "[LOG] ");
    ASSERT_EQ(lines.size(), 4u);
    const char* expected[] = {"warning", "error", "except", "assert"};
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(LineBody(lines[i]), std::string("gui at ") + expected[i]);
}

// "[LOG] " time (6 wide) | thread | category (15 wide) | level (6 wide) | message;
// stream manipulators in one line must not leak into the next.
TEST(LogFacade, LineLayoutAndParts)
{
    LogSession session("parameters debug\ngui debug\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    session.log().buildLog("parameters", kLogInfo, "value ", 42);
    session.log().buildLog("gui", kLogWarning, "seven wide");
    session.log().buildLog("gui", kLogDebug, "");
    session.log().buildLog("gui", kLogInfo, "s", std::string("t"), 7, 8u, 2.5, 'c', true, -3L, 1.0f / 3);
    session.log().buildLog("gui", kLogInfo, std::hex, 255, std::setprecision(2), " ", 3.14159);
    session.log().buildLog("gui", kLogInfo, 255, " ", 3.14159);
    const auto lines = LinesStartingWith(session.finish(), "[LOG] ");
    const char* expected[] = {"parameters      | info   | value 42", "gui             | warning | seven wide",
                              "gui             | debug  | ", "gui             | info   | st782.5c1-30.333333",
                              "gui             | info   | ff 3.1", "gui             | info   | 255 3.14159"};
    ASSERT_EQ(lines.size(), 6u);
    std::ostringstream thread;
    thread << " | " << reinterpret_cast<const void*>(pthread_self()) << " | ";
    for (size_t i = 0; i < 6; ++i)
        EXPECT_EQ(lines[i].substr(12), thread.str() + expected[i]);
    const std::string time = lines[0].substr(6, 6);
    EXPECT_GE(std::stol(time), 20);
    EXPECT_EQ(time.find_first_not_of("0123456789"), time.find(' '));
}

TEST(LogFacade, OverlongLineIsCutAt9999BytesButTheListenerGetsItWhole)
{
    struct Listener : ILogRecordListener {
        std::vector<std::string> lines;
        void onLogRecorded(const std::string& line) override { lines.push_back(line); }
    } listener;
    LogSession session("gui debug\n");
    session.log().setRecordListener(&listener);
    session.log().buildLog("gui", kLogInfo, std::string(12000, 'z'));
    session.log().buildLog("midi", kLogInfo, "filtered");
    session.log().setRecordListener(nullptr);
    EXPECT_EQ(session.log().getBuffers().GetRing(0).mWritePos.load(), 9999);
    const std::string text = session.finish();
    const size_t at = text.find("[LOG] ");
    ASSERT_NE(at, std::string::npos);
    const std::string line = text.substr(at, 9999);
    EXPECT_EQ(line.back(), 'z');
    EXPECT_EQ(line.find('\n'), std::string::npos);
    EXPECT_EQ(text.compare(at + 9999, 4, "LOG "), 0) << "the cut line runs into the next output";
    ASSERT_EQ(listener.lines.size(), 1u);
    EXPECT_EQ(listener.lines[0].size(), listener.lines[0].find('z') + 12001);
    EXPECT_EQ(listener.lines[0].back(), '\n');
    EXPECT_EQ(listener.lines[0].substr(0, 9999), line);
}

TEST(LogFacade, CondAssertInItsThreeConfigurations)
{
    LogSession session("strict debug\nlenient assert\n");
    session.log().cond_assert(true, "always", 1, "a.cpp", "strict");
    try {
        session.log().cond_assert(false, "x>0", 12, "dir/f.cpp", "strict", "x=", -1);
        ADD_FAILURE() << "no exception";
    } catch (const std::logic_error& e) {
        EXPECT_STREQ(e.what(), "x>0");
    }
    EXPECT_NO_THROW(session.log().cond_assert(false, "y", 3, "g.cpp", "lenient"));
    EXPECT_NO_THROW(session.log().cond_assert(false, "z", 4, "h.cpp", "unknown", "extra"));
    const std::string text = session.finish();
    EXPECT_THAT(text, HasSubstr(" | strict          | error  | assert fail  => x>0\nat file : dir/f.cpp +12\nx=-1\n"));
    // The failure line is at "error": below "assert" and for an unknown
    // category it is filtered.
    EXPECT_THAT(text, Not(AnyOf(HasSubstr("=> y"), HasSubstr("=> z"), HasSubstr("=> always"))));
    // The first failure stopped the writer after flushing its line; nothing
    // recorded since, so no writer was started again.
    EXPECT_EQ(CountOccurrences(text, "LOG FLUSH DONE "), 1u);
    EXPECT_LT(text.find("assert fail  => x>0"), text.find("LOG FLUSH DONE "));
}

// The first use from several threads at once builds one instance; the
// macros log through it.
TEST(LogFacade, OneSingletonAndTheMacrosGoThroughIt)
{
    CTempDir dir;
    CoutCapture capture;
    std::atomic<bool> go{false};
    CLog* seen[4] = {};
    std::vector<std::thread> threads;
    for (int i = 0; i < 4; ++i)
        threads.emplace_back([&go, &seen, i] {
            while (!go.load())
                std::this_thread::yield();
            seen[i] = CSingleton<CLog>::getInstance();
        });
    go = true;
    for (auto& thread : threads)
        thread.join();
    for (CLog* instance : seen)
        EXPECT_EQ(instance, seen[0]);

    CSingleton<CLog>::getInstance()->reloadConf(dir.WriteFile("log.conf", "gui info\n"));
    MV_LOG("gui", kLogInfo, "plain ", 1);
    MV_LOG("gui", kLogDebug, "below level");
    MV_LOG("midi", kLogError, "unknown category");
    const unsigned atLine = __LINE__ + 1;
    MV_LOG_AT("gui", kLogNotice, "DoThings", "located");
    EXPECT_THROW(MV_COND_ASSERT("gui", 1 + 1 == 3, "1 + 1 == 3"), std::logic_error);
    MV_COND_ASSERT("gui", 2 > 1, "2 > 1");
    CSingleton<CLog>::destroyInstance();

    const std::string text = capture.text();
    EXPECT_EQ(CountOccurrences(text, "#### Log engine initialization."), 1u);
    EXPECT_EQ(CountOccurrences(text, "#### Log engine destruction."), 1u);
    const auto lines = LinesStartingWith(text, "[LOG] ");
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(LineBody(lines[0]), "plain 1");
    EXPECT_EQ(LineBody(lines[1]), "LogFacadeTest.cpp:" + std::to_string(atLine) + " [ DoThings ] located");
    EXPECT_EQ(LineBody(lines[2]), "assert fail  => 1 + 1 == 3");
    EXPECT_THAT(text, HasSubstr("at file : " __FILE__ " +"));
}

// Several threads logging while the configuration is reloaded: every line
// arrives once, in each thread's order.
TEST(LogThreads, ConcurrentLoggingAndReloadsLoseNothing)
{
    constexpr int kThreads = 8;
    constexpr int kLines = 60;
    auto body = [](int t, size_t i) { return "| thread " + std::to_string(t) + " line " + std::to_string(i) + " end\n"; };
    LogSession session("process debug\ngui debug\n");
    std::atomic<int> running{kThreads};
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t)
        threads.emplace_back([&session, &running, t] {
            for (int i = 0; i < kLines; ++i) {
                session.log().buildLog("process", kLogInfo, "thread ", t, " line ", i, " end");
                session.log().buildLog("filtered", kLogError, "never");
                // Paced well below what a ring holds per writer period.
                std::this_thread::sleep_for(std::chrono::milliseconds(3));
            }
            --running;
        });
    // Same categories each time, so no line may be dropped by a reload.
    while (running.load() > 0) {
        session.log().reloadConf(session.mDir.File("log.conf"));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    for (auto& thread : threads)
        thread.join();
    const std::string text = session.finish();
    EXPECT_THAT(text, Not(HasSubstr(" [WRITE]")));
    EXPECT_THAT(text, Not(HasSubstr("never")));
    EXPECT_EQ(CountOccurrences(text, "[LOG] "), static_cast<size_t>(kThreads * kLines));
    for (int t = 0; t < kThreads; ++t)
        for (size_t i = 0, previous = 0; i < kLines; ++i) {
            const size_t at = text.find(body(t, i));
            ASSERT_NE(at, std::string::npos) << body(t, i);
            EXPECT_GE(at, previous) << body(t, i);
            previous = at;
        }
}
