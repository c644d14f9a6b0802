// log.conf: the parse, its messages, and the output file.
#include <gmock/gmock.h>
#include <sys/stat.h>

#include "CScopedEnv.h"
#include "LogTestSupport.h"

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::StartsWith;
using TestSupport::CScopedEnv;

namespace {

class LogConf : public ::testing::Test, public LogSession {
protected:
    std::string StampOfStart() const
    {
        return CLog::makeTimeStamp(std::chrono::system_clock::to_time_t(
            std::chrono::time_point_cast<std::chrono::system_clock::duration>(mLog->getStartTime())));
    }
};

}  // namespace

TEST_F(LogConf, CategoriesTheirEchoAndReload)
{
    const std::string out = load("gui debug\n\n \t \n// comment\nparameters\twarning\r\nmidi  \t assert\n");
    EXPECT_EQ(out, "## Config File : " + mDir.File("log.conf") +
                       "\n###################### \n## Log Conf parsing ## \n###################### \n"
                       "## Category : gui          level : debug\n## Category : parameters   level : warning\n"
                       "## Category : midi         level : assert\n###################### \n"
                       "#### Output file not open ()\n");
    EXPECT_EQ(levelOf("gui"), kLogDebug);
    EXPECT_EQ(levelOf("parameters"), kLogWarning);
    EXPECT_EQ(levelOf("midi"), kLogAssert);
    EXPECT_EQ(levelOf("comment"), -1);
    // A reload rebuilds the table; a failed one leaves it empty.
    load("midi info\n");
    EXPECT_EQ(levelOf("gui"), -1);
    EXPECT_EQ(levelOf("midi"), kLogInfo);
    mLog->reloadConf("/nonexistent/log.conf");
    EXPECT_EQ(levelOf("midi"), -1);
}

TEST_F(LogConf, EveryRowOfTheFailureTable)
{
    // Without a configuration nothing is recorded, not even an assertion.
    mLog->buildLog("gui", kLogAssert, "never");
    mLog->reloadConf("");
    mLog->buildLog("gui", kLogAssert, "never");
    EXPECT_THAT(mCapture.text(), HasSubstr("#### Log conf file empty.\n#### Output file not open ()\n"));
    mLog->reloadConf("/nonexistent/log.conf");
    EXPECT_THAT(mCapture.text(), HasSubstr("## Config File : /nonexistent/log.conf\nConf file /nonexistent/log.conf "
                                           "not found.\n#### Output file not open ()\n"));
    // Tests run as root, for whom no permission bit makes a file unreadable;
    // a folder is a path that cannot be read as a file.
    mLog->reloadConf(mDir.Path());
    EXPECT_THAT(mCapture.text(), HasSubstr("Conf file " + mDir.Path() + " not found.\n"));

    std::string out = load("gui\ngui debug extra\nmidi Debug\n");
    EXPECT_THAT(out, HasSubstr("## WARNING : this line is ignored as not well-formed gui\n"));
    EXPECT_THAT(out, HasSubstr("## WARNING : this line is ignored as not well-formed gui debug extra\n"));
    EXPECT_THAT(out, HasSubstr("## Category : midi         level : Debug\nLog level Debug not existing.\n"));
    EXPECT_EQ(levelOf("gui"), -1);
    EXPECT_EQ(levelOf("midi"), kLogError);

    out = load("OutputFile /nonexistent-folder/x.log\n");
    EXPECT_THAT(out, HasSubstr("## OutputFile : /nonexistent-folder/x.log\n###################### \n"
                               "## Final Output File : /nonexistent-folder/x.log\n"
                               "#### Output file not open (/nonexistent-folder/x.log)\n"));
    const std::string text = finish();
    EXPECT_THAT(text, StartsWith("#### Log engine initialization.\n"));
    EXPECT_THAT(text, Not(HasSubstr("[LOG] ")));
    EXPECT_THAT(text, HasSubstr("#### Log engine destruction.\n"));
}

// Duplicate categories keep the first level; DebugAllFlag is read from the
// raw line, so "DebugAllFlag 1" leaves it 0; "//" after blanks is a category.
TEST_F(LogConf, OddButSpecifiedAndOverlongLines)
{
    const std::string out = load("gui info\ngui debug\nDebugAllFlag 1\nmidi warning\n  // note\n");
    EXPECT_EQ(levelOf("gui"), kLogInfo);
    EXPECT_EQ(CountOccurrences(out, "## Category : gui "), 2u);
    EXPECT_THAT(out, HasSubstr("## DebugAllFlag : 1\n"));
    EXPECT_EQ(levelOf("midi"), kLogWarning);
    EXPECT_EQ(levelOf("//"), kLogError);
    EXPECT_THAT(out, HasSubstr("Log level note not existing.\n"));
    EXPECT_EQ(levelOf("DebugAllFlag"), -1);

    // Arbitrary bytes are fuzz/logconf's; an over-long line is skipped whole
    // and the parse goes on after it. 255 characters fit exactly.
    const std::string longLine(300, 'L');
    const std::string fits = std::string(249, 'k') + " info";
    const std::string overlong = load("gui debug\n" + longLine + " info\nmidi notice\n" + fits + "\n" + std::string(1000, 'E'));
    EXPECT_EQ(levelOf("gui"), kLogDebug);
    EXPECT_EQ(levelOf("midi"), kLogNotice);
    EXPECT_EQ(levelOf(fits.substr(0, 249).c_str()), kLogInfo);
    EXPECT_THAT(overlong, HasSubstr("## WARNING : this line is ignored as longer than 255 characters " +
                                    longLine.substr(0, 255) + "\n"));
    EXPECT_EQ(CountOccurrences(overlong, "ignored as longer than 255"), 2u);
}

TEST(LogOutputName, StampFollowsCtimeLayout)
{
    CScopedEnv tz("TZ", "UTC");
    // 2026-11-05 18:16:02 and ten days later, UTC.
    EXPECT_EQ(CLog::makeTimeStamp(1793902562), "2026_Nov__5_18-16-02");
    EXPECT_EQ(CLog::makeTimeStamp(1793902562 + 10 * 86400), "2026_Nov_15_18-16-02");
}

TEST_F(LogConf, OutputFileInHomeDesktopIsChosenOncePerLog)
{
    CTempDir home;
    ASSERT_EQ(mkdir((home.Path() + "/Desktop").c_str(), 0755), 0);
    CScopedEnv env("HOME", home.Path().c_str());
    const std::string expected = home.Path() + "/Desktop//mylog_" + StampOfStart();

    const std::string console = load("gui debug\nparameters warning\nOutputFile mylog\n");
    EXPECT_THAT(console, HasSubstr("## Final Output File : " + expected + "\n"));
    EXPECT_THAT(console, Not(HasSubstr("#### Stdout redirected"))) << "goes into the file";
    EXPECT_EQ(mLog->getOutputFileName(), expected);
    mLog->buildLog("gui", kLogInfo, "into the file");

    const std::string other = mDir.File("other.log");
    load("gui debug\nOutputFile " + other + "\n");
    EXPECT_THAT(finish(), Not(HasSubstr("into the file")));
    const std::string file = ReadWholeFile(expected);
    EXPECT_THAT(file, StartsWith("#### Stdout redirected to file " + expected + "\n"));
    EXPECT_THAT(file, HasSubstr("| into the file\n"));
    EXPECT_THAT(file, HasSubstr("## Final Output File : " + other + "\n#### Stdout redirected to file " + other));
    EXPECT_THAT(file, HasSubstr("#### Log engine destruction.\n"));
    struct stat info {};
    EXPECT_NE(stat(other.c_str(), &info), 0) << "the second name is never opened";
}

// Without HOME the tilde stays and the console is kept; an explicit path is
// used as written, and truncated.
TEST_F(LogConf, UnsetHomeAndExplicitOutputPath)
{
    {
        CScopedEnv env("HOME", nullptr);
        EXPECT_THAT(load("OutputFile mylog\n"), HasSubstr("#### Output file not open (~/Desktop//mylog_" +
                                                          StampOfStart() + ")\n"));
    }
    const std::string path = mDir.WriteFile("x.log", "old content that must go\n");
    load("OutputFile " + path + "\n");
    finish();
    EXPECT_THAT(ReadWholeFile(path), StartsWith("#### Stdout redirected to file " + path + "\n"));
}
