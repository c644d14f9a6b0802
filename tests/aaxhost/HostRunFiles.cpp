#include "HostRunFiles.h"

#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <vector>

#include <gtest/gtest.h>

namespace AAXHostTest {

namespace fs = std::filesystem;

std::string ShellQuote(const std::string& s)
{
    std::string q = "'";
    for (char c : s)
        q += (c == '\'') ? std::string("'\\''") : std::string(1, c);
    return q + "'";
}

std::string ReadWholeFile(const std::string& path)
{
    std::ifstream f(path, std::ios::binary);
    std::stringstream ss;
    ss << f.rdbuf();
    return ss.str();
}

std::string TestFolder(const std::string& root, const std::string& name)
{
    // Outside a test (a suite's set-up) every process running one of the
    // suite's tests in parallel does the same set-up: the process id keeps
    // their folders apart.
    std::string test = "no-test." + std::to_string(getpid());
    const ::testing::UnitTest* unit = ::testing::UnitTest::GetInstance();
    if (const auto* info = unit->current_test_info())
        test = std::string(info->test_suite_name()) + "." + info->name();
    else if (const auto* suite = unit->current_test_suite())
        test = std::string(suite->name()) + "." + std::to_string(getpid());
    for (char& c : test)
        if (c == '/' || c == ' ')
            c = '_';
    const fs::path dir = fs::path(root) / test / name;
    static std::vector<std::string> cleaned;
    const std::string key = dir.string();
    if (std::find(cleaned.begin(), cleaned.end(), key) == cleaned.end()) {
        fs::remove_all(dir);
        cleaned.push_back(key);
    }
    fs::create_directories(dir);
    return key;
}

}  // namespace AAXHostTest
