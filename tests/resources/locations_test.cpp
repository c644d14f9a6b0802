#include <cstdlib>
#include <optional>
#include <string>

#include <gtest/gtest.h>

#include "Locations.h"

using Morvane::GetFolder;
using Morvane::GetLocation;
using Morvane::Location;

namespace {

// Sets or unsets HOME for one test and puts the old value back.
class CHomeOverride {
public:
    explicit CHomeOverride(const char* value)
    {
        if (const char* old = std::getenv("HOME"))
            mOld = old;
        if (value != nullptr)
            setenv("HOME", value, 1);
        else
            unsetenv("HOME");
    }
    ~CHomeOverride()
    {
        if (mOld)
            setenv("HOME", mOld->c_str(), 1);
        else
            unsetenv("HOME");
    }

private:
    std::optional<std::string> mOld;
};

}  // namespace

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

TEST(GetLocation, ExpandsTildeFromHome)
{
    CHomeOverride home("/Users/x");
    std::string path;
    ASSERT_TRUE(GetLocation(Morvane::LocationHome, path));
    EXPECT_EQ(path, "/Users/x/");
    ASSERT_TRUE(GetLocation(Morvane::LocationDesktop, path));
    EXPECT_EQ(path, "/Users/x/Desktop/");
    ASSERT_TRUE(GetLocation(Morvane::LocationDownloads, path));
    EXPECT_EQ(path, "/Users/x/Downloads/");
    // Fixed folders are not touched by HOME.
    ASSERT_TRUE(GetLocation(Morvane::LocationProgramData, path));
    EXPECT_EQ(path, "/Library/");
    ASSERT_TRUE(GetLocation(Morvane::LocationRoot, path));
    EXPECT_EQ(path, "/");
}

TEST(GetLocation, KeepsTildeWithoutHome)
{
    CHomeOverride home(nullptr);
    std::string path;
    ASSERT_TRUE(GetLocation(Morvane::LocationHome, path));
    EXPECT_EQ(path, "~/");
    ASSERT_TRUE(GetLocation(Morvane::LocationDesktop, path));
    EXPECT_EQ(path, "~/Desktop/");
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
