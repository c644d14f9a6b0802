// Helpers shared by the log tests: capture of std::cout, scratch folders.
#pragma once

#include <unistd.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

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

class TempDir {
public:
    TempDir()
    {
        char pattern[] = "/tmp/logtest.XXXXXX";
        const char* made = mkdtemp(pattern);
        mPath = made != nullptr ? made : "/tmp";
    }
    ~TempDir() { std::system(("rm -rf '" + mPath + "'").c_str()); }
    TempDir(const TempDir&) = delete;
    TempDir& operator=(const TempDir&) = delete;
    const std::string& path() const { return mPath; }
    std::string file(const std::string& name) const { return mPath + "/" + name; }

    std::string write(const std::string& name, const std::string& content) const
    {
        std::ofstream out(file(name), std::ios::binary);
        out << content;
        return file(name);
    }

private:
    std::string mPath;
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
