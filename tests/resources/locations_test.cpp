#include <gtest/gtest.h>

#include <string>

#include "CScopedEnv.h"
#include "Locations.h"
#include "stlutils.h"

using Morvane::GetFolder;
using Morvane::GetLocation;
using Morvane::Location;

TEST(GetFolder, DropsLastComponentAndTrailingSeparators)
{
    const std::pair<const char*, const char*> cases[] = {
        {"/a/b/c//", "/a/b"}, {"/a/b/", "/a"}, {"a/b", "a"}, {"/a/b\\", "/a"}, {"", ""}, {"/", ""},
        {"///", ""},          {"file", ""},    {"/a", ""},   {"a\\", ""},     {"\\\\", ""}};
    for (const auto& [path, folder] : cases)
        EXPECT_EQ(GetFolder(path), folder) << "input: " << path;
}

// The tilde is expanded from HOME and kept when HOME is unset; fixed folders
// never depend on it; reserved values give an empty path, unknown ones fail.
TEST(GetLocation, TildeFollowsHomeAndBadValuesFail)
{
    const struct { const char* home; Location location; const char* expected; } cases[] = {
        {"/Users/x", Morvane::LocationDesktop, "/Users/x/Desktop/"},
        {"/Users/x", Morvane::LocationDownloads, "/Users/x/Downloads/"},
        {"/Users/x", Morvane::LocationProgramData, "/Library/"},
        {"/Users/x", Morvane::LocationRoot, "/"},
        {nullptr, Morvane::LocationHome, "~/"},
        {nullptr, Morvane::LocationReserved1, ""},
        {nullptr, Morvane::LocationReserved2, ""}};
    for (const auto& c : cases) {
        TestSupport::CScopedEnv home("HOME", c.home);
        std::string path = "x";
        ASSERT_TRUE(GetLocation(c.location, path)) << c.expected;
        EXPECT_EQ(path, c.expected);
    }
    std::string path = "untouched";
    for (int bad : {7, -1, 1000})
        EXPECT_FALSE(GetLocation(static_cast<Location>(bad), path)) << bad;
    EXPECT_EQ(path, "untouched");
}

// The bundle path's "/./" clean-up relies on it.
TEST(ReplaceAll, TerminatesAndResumesAfterInsertedText)
{
    using Morvane::stlutils::replace_all;
    EXPECT_EQ(replace_all("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(replace_all("/a/./b/./c", "/./", "/"), "/a/b/c");
    // The scan resumes after the inserted "/", so a run shrinks only once.
    EXPECT_EQ(replace_all("/a/././b", "/./", "/"), "/a/./b");
    EXPECT_EQ(replace_all("abcabc", "abc", ""), "");
    EXPECT_EQ(replace_all("abc", "", "x"), "abc") << "an empty pattern must not loop forever";
}
