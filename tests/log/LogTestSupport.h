// Helpers shared by the log tests: capture of std::cout, reading back what
// was printed; scratch folders come from the shared test support.
#pragma once

#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "CTempDir.h"

using TestSupport::CTempDir;

// Swaps std::cout's buffer for a string buffer. Create it before any log
// object (whose writer thread prints) and read it after they are gone.
class CoutCapture {
public:
    CoutCapture() : mPrevious(std::cout.rdbuf(mText.rdbuf())) {}
    ~CoutCapture() { std::cout.rdbuf(mPrevious); }
    CoutCapture(const CoutCapture&) = delete;
    CoutCapture& operator=(const CoutCapture&) = delete;
    std::string text() const { return mText.str(); }

private:
    std::ostringstream mText;
    std::streambuf* mPrevious;
};

inline std::string ReadWholeFile(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    std::ostringstream text;
    text << in.rdbuf();
    return text.str();
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
