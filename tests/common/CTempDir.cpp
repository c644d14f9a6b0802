#include "CTempDir.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <vector>

#include <gtest/gtest.h>

namespace TestSupport {

CTempDir::CTempDir(const std::string& prefix)
{
    std::string pattern = ::testing::TempDir() + prefix + ".XXXXXX";
    std::vector<char> buffer(pattern.begin(), pattern.end());
    buffer.push_back('\0');
    if (::mkdtemp(buffer.data()) == nullptr)
        throw std::runtime_error("cannot create a temporary folder from " + pattern);
    mPath = buffer.data();
}

CTempDir::~CTempDir()
{
    std::error_code ignored;
    std::filesystem::remove_all(mPath, ignored);
}

std::string CTempDir::WriteFile(const std::string& name, const std::string& content) const
{
    const std::string path = File(name);
    std::ofstream(path) << content;
    return path;
}

}  // namespace TestSupport
