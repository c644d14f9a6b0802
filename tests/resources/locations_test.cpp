#include <string>

#include <gtest/gtest.h>

#include "CScopedEnv.h"
#include "Locations.h"

using Morvane::GetFolder;
using Morvane::GetLocation;
using Morvane::Location;

TEST(GetFolder, DropsLastComponentAndTrailingSeparators)
{
    EXPECT_EQ(GetFolder("/a/b/c"), "/a/b");
    EXPECT_EQ(GetFolder("/a/b/c//"), "/a/b");
    EXPECT_EQ(GetFolder("/a/b/"), "/a");
    EXPECT_EQ(GetFolder("a/b"), "a");
    EXPECT_EQ(GetFolder("/a/b\\"), "/a");
    for (const char* noFolder : {"", "/", "///", "file", "/a", "a\\", "\\\\"})
        EXPECT_EQ(GetFolder(noFolder), "") << "input: " << noFolder;
}

// The tilde is expanded from HOME, and kept when HOME is unset; fixed
// folders never depend on it.
TEST(GetLocation, TildeFollowsHome)
{
    const struct {
        const char* home;
        Location location;
        const char* expected;
    } cases[] = {
        {"/Users/x", Morvane::LocationHome, "/Users/x/"},
        {"/Users/x", Morvane::LocationDesktop, "/Users/x/Desktop/"},
        {"/Users/x", Morvane::LocationDownloads, "/Users/x/Downloads/"},
        {"/Users/x", Morvane::LocationProgramData, "/Library/"},
        {"/Users/x", Morvane::LocationRoot, "/"},
        {nullptr, Morvane::LocationHome, "~/"},
        {nullptr, Morvane::LocationDesktop, "~/Desktop/"},
    };
    for (const auto& c : cases) {
        TestSupport::CScopedEnv home("HOME", c.home);
        std::string path;
        ASSERT_TRUE(GetLocation(c.location, path)) << c.expected;
        EXPECT_EQ(path, c.expected);
    }
}

TEST(GetLocation, ReservedAndUnknownValues)
{
    std::string path = "untouched";
    EXPECT_FALSE(GetLocation(static_cast<Location>(7), path));
    EXPECT_FALSE(GetLocation(static_cast<Location>(-1), path));
    EXPECT_FALSE(GetLocation(static_cast<Location>(1000), path));
    EXPECT_EQ(path, "untouched");

    EXPECT_TRUE(GetLocation(Morvane::LocationReserved1, path));
    EXPECT_EQ(path, "");
    path = "x";
    EXPECT_TRUE(GetLocation(Morvane::LocationReserved2, path));
    EXPECT_EQ(path, "");
}
