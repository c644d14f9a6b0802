// log.conf: the parse, its messages, and the output file.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <cstdlib>
#include <ctime>
#include <memory>
#include <random>

#include "CScopedEnv.h"
#include "LogTestSupport.h"
#include "logger/CLog.h"

using TestSupport::CScopedEnv;

namespace {

class LogConf : public ::testing::Test {
protected:
    // Loads `conf` into a fresh log; returns what reloadConf printed.
    std::string load(const std::string& conf)
    {
        const size_t before = mCapture.text().size();
        mLog->reloadConf(mDir.WriteFile("log.conf", conf));
        return mCapture.text().substr(before);
    }
    ELogLevel levelOf(const char* category)
    {
        ELogLevel level = static_cast<ELogLevel>(-1);
        EXPECT_TRUE(mLog->getCategoryLevel(category, level)) << category;
        return level;
    }
    bool has(const char* category)
    {
        ELogLevel level;
        return mLog->getCategoryLevel(category, level);
    }
    std::string finish()
    {
        mLog.reset();
        return mCapture.text();
    }

    CoutCapture mCapture;
    CTempDir mDir;
    std::unique_ptr<CLog> mLog = std::make_unique<CLog>();
};

std::string StampOfStart(const CLog& log)
{
    return CLog::makeTimeStamp(std::chrono::system_clock::to_time_t(
        std::chrono::time_point_cast<std::chrono::system_clock::duration>(log.getStartTime())));
}

}  // namespace

TEST_F(LogConf, CategoriesAndTheirEcho)
{
    const std::string out = load("gui debug\n\n \t \n// comment\nparameters\twarning\r\nmidi  \t assert\n");
    EXPECT_EQ(out, "## Config File : " + mDir.File("log.conf") +
                       "\n"
                       "###################### \n"
                       "## Log Conf parsing ## \n"
                       "###################### \n"
                       "## Category : gui          level : debug\n"
                       "## Category : parameters   level : warning\n"
                       "## Category : midi         level : assert\n"
                       "###################### \n"
                       "#### Output file not open ()\n");
    EXPECT_EQ(levelOf("gui"), kLogDebug);
    EXPECT_EQ(levelOf("parameters"), kLogWarning);
    EXPECT_EQ(levelOf("midi"), kLogAssert);
    EXPECT_FALSE(has("comment"));
}

TEST_F(LogConf, EveryRowOfTheFailureTable)
{
    mLog->reloadConf("");
    EXPECT_NE(mCapture.text().find("#### Log conf file empty.\n#### Output file not open ()\n"), std::string::npos);

    mLog->reloadConf("/nonexistent/log.conf");
    EXPECT_NE(mCapture.text().find("## Config File : /nonexistent/log.conf\nConf file /nonexistent/log.conf "
                                   "not found.\n#### Output file not open ()\n"),
              std::string::npos);

    // Tests run as root, for whom no permission bit makes a file unreadable;
    // a folder is a path that cannot be read as a file.
    mLog->reloadConf(mDir.Path());
    EXPECT_NE(mCapture.text().find("Conf file " + mDir.Path() + " not found.\n"), std::string::npos);

    std::string out = load("gui\ngui debug extra\nmidi Debug\n");
    EXPECT_NE(out.find("## WARNING : this line is ignored as not well-formed gui\n"), std::string::npos);
    EXPECT_NE(out.find("## WARNING : this line is ignored as not well-formed gui debug extra\n"), std::string::npos);
    EXPECT_NE(out.find("## Category : midi         level : Debug\nLog level Debug not existing.\n"),
              std::string::npos);
    EXPECT_FALSE(has("gui"));
    EXPECT_EQ(levelOf("midi"), kLogError);

    out = load("OutputFile /nonexistent-folder/x.log\n");
    EXPECT_NE(out.find("## OutputFile : /nonexistent-folder/x.log\n"
                       "###################### \n"
                       "## Final Output File : /nonexistent-folder/x.log\n"
                       "#### Output file not open (/nonexistent-folder/x.log)\n"),
              std::string::npos);
}

TEST_F(LogConf, OddButSpecifiedLines)
{
    const std::string out = load("gui info\ngui debug\nDebugAllFlag 1\nmidi warning\n  // note\n");
    EXPECT_EQ(levelOf("gui"), kLogInfo) << "the first level given is kept";
    EXPECT_EQ(CountOccurrences(out, "## Category : gui "), 2u);
    EXPECT_NE(out.find("## DebugAllFlag : 1\n"), std::string::npos);
    EXPECT_EQ(levelOf("midi"), kLogWarning) << "the flag is read from the raw line, so it stays 0";
    EXPECT_EQ(levelOf("//"), kLogError);
    EXPECT_NE(out.find("Log level note not existing.\n"), std::string::npos);
    EXPECT_FALSE(has("DebugAllFlag"));
}

TEST_F(LogConf, ReloadRebuildsTheTable)
{
    load("gui debug\n");
    load("midi info\n");
    EXPECT_FALSE(has("gui"));
    EXPECT_EQ(levelOf("midi"), kLogInfo);
    mLog->reloadConf("/nonexistent/log.conf");
    EXPECT_FALSE(has("midi"));
}

TEST_F(LogConf, HostileFilesEndTheParseCleanly)
{
    std::string many;
    for (int i = 0; i < 10000; ++i)
        many += "c" + std::to_string(i) + " info\n";
    load(many);
    EXPECT_EQ(levelOf("c0"), kLogInfo);
    EXPECT_EQ(levelOf("c9999"), kLogInfo);

    std::mt19937 random(1234);
    std::string garbage(65536, '\0');
    for (char& c : garbage)
        c = static_cast<char>(random() & 0xff);
    std::string out = load(garbage + "\nafter garbage\n");
    EXPECT_EQ(CountOccurrences(out, "###################### \n"), 3u) << "the parse reached its end";

    // Over-long lines are skipped whole, the parse goes on after them.
    const std::string longLine(300, 'L');
    out = load("gui debug\n" + longLine + " info\nmidi notice\n" + std::string(1000, 'E'));
    EXPECT_EQ(levelOf("gui"), kLogDebug);
    EXPECT_EQ(levelOf("midi"), kLogNotice);
    EXPECT_NE(out.find("## WARNING : this line is ignored as longer than 255 characters " + longLine.substr(0, 255) +
                       "\n"),
              std::string::npos);
    EXPECT_EQ(CountOccurrences(out, "ignored as longer than 255"), 2u);

    // 255 characters fit exactly.
    const std::string fits = std::string(249, 'k') + " info";
    load(fits + "\n");
    EXPECT_EQ(levelOf(fits.substr(0, 249).c_str()), kLogInfo);
}

TEST(LogOutputName, StampFollowsCtimeLayout)
{
    CScopedEnv tz("TZ", "UTC");
    std::tm when{};
    when.tm_year = 2026 - 1900;
    when.tm_mon = 10;
    when.tm_mday = 5;
    when.tm_hour = 18;
    when.tm_min = 16;
    when.tm_sec = 2;
    EXPECT_EQ(CLog::makeTimeStamp(timegm(&when)), "2026_Nov__5_18-16-02");
    when.tm_mday = 15;
    EXPECT_EQ(CLog::makeTimeStamp(timegm(&when)), "2026_Nov_15_18-16-02");
    when.tm_year = 1999 - 1900;
    when.tm_mon = 0;
    when.tm_mday = 1;
    when.tm_hour = 0;
    EXPECT_EQ(CLog::makeTimeStamp(timegm(&when)), "1999_Jan__1_00-16-02");
}

TEST_F(LogConf, OutputFileInHomeDesktopIsChosenOncePerLog)
{
    CTempDir home;
    ASSERT_EQ(mkdir((home.Path() + "/Desktop").c_str(), 0755), 0);
    CScopedEnv env("HOME", home.Path().c_str());
    const std::string expected = home.Path() + "/Desktop//mylog_" + StampOfStart(*mLog);

    std::string console = load("gui debug\nparameters warning\nOutputFile mylog\n");
    EXPECT_NE(console.find("## Final Output File : " + expected + "\n"), std::string::npos);
    EXPECT_EQ(console.find("#### Stdout redirected"), std::string::npos) << "goes into the file";
    EXPECT_EQ(mLog->getOutputFileName(), expected);
    mLog->buildLog("gui", kLogInfo, "into the file");

    const std::string other = mDir.File("other.log");
    load("gui debug\nOutputFile " + other + "\n");
    const std::string text = finish();
    EXPECT_EQ(text.find("into the file"), std::string::npos);

    const std::string file = ReadWholeFile(expected);
    EXPECT_EQ(file.rfind("#### Stdout redirected to file " + expected + "\n", 0), 0u);
    EXPECT_NE(file.find("| into the file\n"), std::string::npos);
    EXPECT_NE(file.find("## Final Output File : " + other + "\n#### Stdout redirected to file " + other + "\n"),
              std::string::npos);
    EXPECT_NE(file.find("#### Log engine destruction.\n"), std::string::npos);
    struct stat info {};
    EXPECT_NE(stat(other.c_str(), &info), 0) << "the second name is never opened";
}

TEST_F(LogConf, UnsetHomeLeavesTheTildeAndTheConsole)
{
    CScopedEnv env("HOME", nullptr);
    const std::string out = load("OutputFile mylog\n");
    EXPECT_NE(out.find("#### Output file not open (~/Desktop//mylog_" + StampOfStart(*mLog) + ")\n"),
              std::string::npos);
}

TEST_F(LogConf, ExplicitOutputPathIsTruncatedAndUsedAsWritten)
{
    const std::string path = mDir.WriteFile("x.log", "old content that must go\n");
    load("OutputFile " + path + "\n");
    finish();
    const std::string file = ReadWholeFile(path);
    EXPECT_EQ(file.find("old content"), std::string::npos);
    EXPECT_EQ(file.rfind("#### Stdout redirected to file " + path + "\n", 0), 0u);
}
