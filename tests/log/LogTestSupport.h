// Helpers shared by the log tests: capture of std::cout and one CLog under it.
#pragma once

#include <gtest/gtest.h>

#include <fstream>
#include <iostream>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include "CTempDir.h"
#include "logger/CLog.h"

using TestSupport::CTempDir;

// Swaps std::cout's buffer for a string buffer. Create it before any log
// object (whose writer thread prints) and read it after they are gone.
class CoutCapture {
public:
    CoutCapture() : mPrevious(std::cout.rdbuf(mText.rdbuf())) {}
    ~CoutCapture() { std::cout.rdbuf(mPrevious); }
    std::string text() const { return mText.str(); }

private:
    std::ostringstream mText;
    std::streambuf* mPrevious;
};

// One CLog, with std::cout captured around it.
struct LogSession {
    LogSession() = default;
    explicit LogSession(const std::string& conf) { load(conf); }
    CLog& log() { return *mLog; }
    // Loads `conf` from a file; returns what reloadConf printed.
    std::string load(const std::string& conf)
    {
        const size_t before = mCapture.text().size();
        mLog->reloadConf(mDir.WriteFile("log.conf", conf));
        return mCapture.text().substr(before);
    }
    // The configured level, -1 for a category that is not configured.
    int levelOf(const char* category) const
    {
        ELogLevel level = kLogDebug;
        return mLog->getCategoryLevel(category, level) ? level : -1;
    }
    // Destroys the log (draining it) and returns everything it printed.
    std::string finish()
    {
        mLog.reset();
        return mCapture.text();
    }

    CoutCapture mCapture;
    CTempDir mDir;
    std::unique_ptr<CLog> mLog = std::make_unique<CLog>();
};

inline std::string ReadWholeFile(const std::string& path)
{
    return (std::ostringstream() << std::ifstream(path, std::ios::binary).rdbuf()).str();
}

inline size_t CountOccurrences(const std::string& text, const std::string& what)
{
    size_t count = 0;
    for (size_t pos = text.find(what); pos != std::string::npos; pos = text.find(what, pos + what.size()))
        ++count;
    return count;
}

inline std::vector<std::string> LinesStartingWith(const std::string& text, const std::string& prefix)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        if (line.compare(0, prefix.size(), prefix) == 0)
            lines.push_back(line);
    return lines;
}

inline std::string LineBody(const std::string& line)
{
    const size_t bar = line.rfind(" | ");
    return bar == std::string::npos ? std::string() : line.substr(bar + 3);
}
