// The log facade: filtering, line layout, cutting, assertions, the macros
// and the singleton.
#include <gtest/gtest.h>
#include <pthread.h>

#include <atomic>
#include <chrono>
#include <iomanip>
#include <memory>
#include <stdexcept>
#include <thread>

#include "LogTestSupport.h"
#include "logger/CLog.h"

namespace {

// Captures std::cout around one CLog loaded with the given configuration.
class LogSession {
public:
    explicit LogSession(const std::string& conf) : mLog(std::make_unique<CLog>())
    {
        mLog->reloadConf(mDir.WriteFile("log.conf", conf));
    }
    CLog& log() { return *mLog; }
    // Destroys the log (draining it) and returns everything it printed.
    std::string finish()
    {
        mLog.reset();
        return mCapture.text();
    }

private:
    CoutCapture mCapture;
    CTempDir mDir;
    std::unique_ptr<CLog> mLog;
};

std::string ThisThreadText()
{
    std::ostringstream text;
    text << reinterpret_cast<const void*>(pthread_self());
    return text.str();
}

// "[LOG] " then four fields separated by " | ", then the message.
bool SplitLine(const std::string& line, std::vector<std::string>& fields)
{
    fields.clear();
    if (line.compare(0, 6, "[LOG] ") != 0)
        return false;
    size_t from = 6;
    for (int i = 0; i < 4; ++i) {
        const size_t bar = line.find(" | ", from);
        if (bar == std::string::npos)
            return false;
        fields.push_back(line.substr(from, bar - from));
        from = bar + 3;
    }
    fields.push_back(line.substr(from));
    return true;
}

std::string LineBody(const std::string& line)
{
    const size_t bar = line.rfind(" | ");
    return bar == std::string::npos ? std::string() : line.substr(bar + 3);
}

}  // namespace

TEST(LogFacade, WithoutConfigurationOnlyBannersAppear)
{
    std::string text;
    {
        CoutCapture capture;
        {
            CLog log;
            log.buildLog("gui", kLogAssert, "never");
            log.reloadConf("");
            log.buildLog("gui", kLogAssert, "never either");
        }
        text = capture.text();
    }
    EXPECT_EQ(text.find("[LOG] "), std::string::npos);
    EXPECT_EQ(text.rfind("#### Log engine initialization.\n", 0), 0u);
    EXPECT_NE(text.find("#### Log conf file empty.\n#### Output file not open ()\n"), std::string::npos);
    EXPECT_NE(text.find("#### Log engine destruction.\n"), std::string::npos);
}

TEST(LogFacade, CategoryLevelDecidesWhatIsRecorded)
{
    LogSession session("gui warning\n");
    for (int level = kLogDebug; level <= kLogAssert; ++level) {
        session.log().buildLog("gui", static_cast<ELogLevel>(level), "gui at ", DicoLog[level]);
        session.log().buildLog("midi", static_cast<ELogLevel>(level), "midi at ", DicoLog[level]);
    }
    EXPECT_FALSE(session.log().isRecorded("gui", kLogNotice));
    EXPECT_TRUE(session.log().isRecorded("gui", kLogWarning));
    EXPECT_FALSE(session.log().isRecorded("midi", kLogAssert));
    EXPECT_FALSE(session.log().isRecorded(nullptr, kLogAssert));
    EXPECT_FALSE(session.log().isRecorded("gui", static_cast<ELogLevel>(9)));

    const auto lines = LinesStartingWith(session.finish(), "[LOG] ");
    ASSERT_EQ(lines.size(), 4u);
    const char* expected[] = {"warning", "error", "except", "assert"};
    for (size_t i = 0; i < 4; ++i)
        EXPECT_EQ(LineBody(lines[i]), std::string("gui at ") + expected[i]);
}

TEST(LogFacade, LineLayoutHasFixedLeftAdjustedColumns)
{
    LogSession session("parameters debug\ngui debug\nfakehost debug\n");
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    session.log().buildLog("parameters", kLogInfo, "value ", 42);
    session.log().buildLog("gui", kLogWarning, "seven wide");
    session.log().buildLog("fakehost-and-a-long-name", kLogDebug, "x");  // not configured
    session.log().buildLog("fakehost", kLogDebug, "");
    const auto lines = LinesStartingWith(session.finish(), "[LOG] ");
    ASSERT_EQ(lines.size(), 3u);

    std::vector<std::string> f;
    ASSERT_TRUE(SplitLine(lines[0], f)) << lines[0];
    EXPECT_EQ(f[0].size(), 6u);
    EXPECT_GE(std::stol(f[0]), 20);
    EXPECT_EQ(f[0].find_first_not_of("0123456789"), f[0].find(' '));
    EXPECT_EQ(f[1], ThisThreadText());
    EXPECT_EQ(f[2], "parameters     ");
    EXPECT_EQ(f[3], "info  ");
    EXPECT_EQ(f[4], "value 42");

    ASSERT_TRUE(SplitLine(lines[1], f)) << lines[1];
    EXPECT_EQ(f[2], "gui            ");
    EXPECT_EQ(f[3], "warning");
    EXPECT_EQ(f[4], "seven wide");

    ASSERT_TRUE(SplitLine(lines[2], f)) << lines[2];
    EXPECT_EQ(f[3], "debug ");
    EXPECT_EQ(f[4], "");
}

TEST(LogFacade, PartsAreConcatenatedAndStreamStateDoesNotLeak)
{
    LogSession session("gui debug\n");
    session.log().buildLog("gui", kLogInfo, "s", std::string("t"), 7, 8u, 2.5, 'c', true, -3L, 1.0f / 3);
    session.log().buildLog("gui", kLogInfo, std::hex, 255, std::setprecision(2), " ", 3.14159);
    session.log().buildLog("gui", kLogInfo, 255, " ", 3.14159);
    const auto lines = LinesStartingWith(session.finish(), "[LOG] ");
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(LineBody(lines[0]), "st782.5c1-30.333333");
    EXPECT_EQ(LineBody(lines[1]), "ff 3.1");
    EXPECT_EQ(LineBody(lines[2]), "255 3.14159");
}

TEST(LogFacade, OverlongLineIsCutAt9999BytesWithoutNewline)
{
    LogSession session("gui debug\n");
    session.log().buildLog("gui", kLogInfo, std::string(12000, 'z'));
    EXPECT_EQ(session.log().getBuffers().GetRing(0).mWritePos.load(), 9999);
    const std::string text = session.finish();
    const size_t at = text.find("[LOG] ");
    ASSERT_NE(at, std::string::npos);
    const std::string line = text.substr(at, 9999);
    EXPECT_EQ(line.back(), 'z');
    EXPECT_EQ(line.find('\n'), std::string::npos);
    EXPECT_EQ(text.compare(at + 9999, 4, "LOG "), 0) << "the cut line runs into the next output";
}

TEST(LogFacade, ListenerGetsEveryRecordedLineUncut)
{
    struct Listener : ILogRecordListener {
        std::vector<std::string> lines;
        void onLogRecorded(const std::string& line) override { lines.push_back(line); }
    } listener;
    LogSession session("gui debug\n");
    session.log().setRecordListener(&listener);
    session.log().buildLog("gui", kLogInfo, std::string(12000, 'q'));
    session.log().buildLog("midi", kLogInfo, "filtered");
    session.log().setRecordListener(nullptr);
    const std::string text = session.finish();
    ASSERT_EQ(listener.lines.size(), 1u);
    EXPECT_EQ(listener.lines[0].size(), listener.lines[0].find('q') + 12001);
    EXPECT_EQ(listener.lines[0].back(), '\n');
    EXPECT_EQ(text.find(listener.lines[0].substr(0, 9999)), text.find("[LOG] "));
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

    EXPECT_NE(text.find(" | strict          | error  | assert fail  => x>0\nat file : dir/f.cpp +12\nx=-1\n"),
              std::string::npos);
    // The failure line is at "error": below "assert" and for an unknown
    // category it is filtered.
    EXPECT_EQ(text.find("=> y"), std::string::npos);
    EXPECT_EQ(text.find("=> z"), std::string::npos);
    EXPECT_EQ(text.find("=> always"), std::string::npos);
    // The first failure stopped the writer after flushing its line; nothing
    // recorded since, so no writer was started again.
    EXPECT_EQ(CountOccurrences(text, "LOG FLUSH DONE "), 1u);
    const size_t line = text.find("assert fail  => x>0");
    const size_t flush = text.find("LOG FLUSH DONE ");
    EXPECT_LT(line, flush);
}

TEST(LogFacade, MacrosGoThroughTheSingleton)
{
    CTempDir dir;
    CoutCapture capture;
    const std::string conf = dir.WriteFile("log.conf", "gui info\n");
    CSingleton<CLog>::getInstance()->reloadConf(conf);
    MV_LOG("gui", kLogInfo, "plain ", 1);
    MV_LOG("gui", kLogDebug, "below level");
    MV_LOG("midi", kLogError, "unknown category");
    const unsigned atLine = __LINE__ + 1;
    MV_LOG_AT("gui", kLogNotice, "DoThings", "located");
    EXPECT_THROW(MV_COND_ASSERT("gui", 1 + 1 == 3, "1 + 1 == 3"), std::logic_error);
    MV_COND_ASSERT("gui", 2 > 1, "2 > 1");
    CSingleton<CLog>::destroyInstance();

    const auto lines = LinesStartingWith(capture.text(), "[LOG] ");
    ASSERT_EQ(lines.size(), 3u);
    EXPECT_EQ(LineBody(lines[0]), "plain 1");
    EXPECT_EQ(LineBody(lines[1]), "LogFacadeTest.cpp:" + std::to_string(atLine) + " [ DoThings ] located");
    EXPECT_EQ(LineBody(lines[2]), "assert fail  => 1 + 1 == 3");
    EXPECT_NE(capture.text().find("at file : " __FILE__ " +"), std::string::npos);
}

TEST(LogFacade, ConcurrentFirstUseBuildsOneInstance)
{
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
    CSingleton<CLog>::destroyInstance();
    EXPECT_EQ(CountOccurrences(capture.text(), "#### Log engine initialization."), 1u);
    EXPECT_EQ(CountOccurrences(capture.text(), "#### Log engine destruction."), 1u);
}
