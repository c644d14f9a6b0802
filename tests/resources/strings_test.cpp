#include <gtest/gtest.h>

#include <string>
#include <vector>
#include "stlutils.h"

using Morvane::stlutils::replace_all;

// Runs of delimiters never yield empty tokens; the delimiters are a set, not
// a separator string; tokens are appended.
TEST(Tokenize, SplitsOnAnyDelimiterAndAppends)
{
    std::vector<std::string> tokens{"kept"};
    Morvane::stlutils::tokenize("  a -+b+- ", tokens, " +-");
    Morvane::stlutils::tokenize("   ", tokens, " ");
    Morvane::stlutils::tokenize("c d", tokens, "");
    EXPECT_EQ(tokens, (std::vector<std::string>{"kept", "a", "b", "c d"}));
}

TEST(ReplaceAll, TerminatesAndResumesAfterInsertedText)
{
    EXPECT_EQ(replace_all("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(replace_all("/a/./b/./c", "/./", "/"), "/a/b/c");
    // The scan resumes after the inserted "/", so a run shrinks only once.
    EXPECT_EQ(replace_all("/a/././b", "/./", "/"), "/a/./b");
    EXPECT_EQ(replace_all("abcabc", "abc", ""), "");
    EXPECT_EQ(replace_all("abc", "", "x"), "abc") << "an empty pattern must not loop forever";
}
