#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "stlutils.h"

using Morvane::stlutils::replace_all;
using Morvane::stlutils::tokenize;

namespace {

std::vector<std::string> Split(const std::string& text, const std::string& delimiters)
{
    std::vector<std::string> tokens;
    tokenize(text, tokens, delimiters);
    return tokens;
}

}  // namespace

TEST(Tokenize, RunsOfDelimitersNeverYieldEmptyTokens)
{
    using V = std::vector<std::string>;
    EXPECT_EQ(Split("  a  b ", " "), (V{"a", "b"}));
    EXPECT_EQ(Split("", " "), V{});
    EXPECT_EQ(Split("   ", " "), V{});
    EXPECT_EQ(Split("\t \tgui \t debug\t", "\t "), (V{"gui", "debug"}));
    EXPECT_EQ(Split("abc", " "), V{"abc"});
    // A delimiter set, not a separator string.
    EXPECT_EQ(Split("a-+b+-c", "+-"), (V{"a", "b", "c"}));
    EXPECT_EQ(Split("a b", ""), V{"a b"});
}

TEST(Tokenize, AppendsWithoutClearing)
{
    std::vector<std::string> tokens{"kept"};
    tokenize("x y", tokens, " ");
    EXPECT_EQ(tokens, (std::vector<std::string>{"kept", "x", "y"}));
}

TEST(ReplaceAll, TerminatesAndResumesAfterInsertedText)
{
    EXPECT_EQ(replace_all("aaa", "a", "aa"), "aaaaaa");
    EXPECT_EQ(replace_all("x", "/", "/"), "x");
    EXPECT_EQ(replace_all("/a/b", "/", "/"), "/a/b");
    EXPECT_EQ(replace_all("/a/./b/./c", "/./", "/"), "/a/b/c");
    // The scan resumes after the inserted "/", so a run shrinks only once.
    EXPECT_EQ(replace_all("/a/././b", "/./", "/"), "/a/./b");
    EXPECT_EQ(replace_all("/././", "/./", "/"), "/./");
    EXPECT_EQ(replace_all("abcabc", "abc", ""), "");
    EXPECT_EQ(replace_all("", "a", "b"), "");
    // An empty pattern must not loop forever.
    EXPECT_EQ(replace_all("abc", "", "x"), "abc");
}
