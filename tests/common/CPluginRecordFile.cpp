#include "CPluginRecordFile.h"

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
    std::vector<std::string> selected;
    for (const std::string& line : Lines())
        if (StartsWith(line, prefix))
            selected.push_back(line);
    return selected;
}

int CPluginRecordFile::IndexOf(const std::string& prefix) const
{
    const auto lines = Lines();
    for (size_t i = 0; i < lines.size(); ++i)
        if (StartsWith(lines[i], prefix))
            return static_cast<int>(i);
    return -1;
}

void CPluginRecordFile::Clear() const { std::ofstream(mPath, std::ios::trunc); }

}  // namespace TestSupport
