#include "CPluginRecordFile.h"

#include <algorithm>
#include <cstdlib>
#include <fstream>

namespace TestSupport {

namespace {
bool StartsWith(const std::string& line, const std::string& prefix)
{
    return line.compare(0, prefix.size(), prefix) == 0;
}
}  // namespace

CPluginRecordFile::CPluginRecordFile(const std::string& environmentVariable)
    : mVariable(environmentVariable), mDir("plugin_record"), mPath(mDir.File("calls.txt"))
{
    Clear();
    setenv(mVariable.c_str(), mPath.c_str(), 1);
}

CPluginRecordFile::~CPluginRecordFile() { unsetenv(mVariable.c_str()); }

std::vector<std::string> CPluginRecordFile::Lines() const
{
    std::vector<std::string> lines;
    std::ifstream in(mPath);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

std::vector<std::string> CPluginRecordFile::LinesStartingWith(const std::string& prefix) const
{
    std::vector<std::string> lines = Lines();
    lines.erase(std::remove_if(lines.begin(), lines.end(), [&](const std::string& l) { return !StartsWith(l, prefix); }),
                lines.end());
    return lines;
}

int CPluginRecordFile::IndexOf(const std::string& prefix) const
{
    const std::vector<std::string> lines = Lines();
    const auto at = std::find_if(lines.begin(), lines.end(), [&](const std::string& l) { return StartsWith(l, prefix); });
    return at == lines.end() ? -1 : static_cast<int>(at - lines.begin());
}

void CPluginRecordFile::Clear() const { std::ofstream(mPath, std::ios::trunc); }

}  // namespace TestSupport
