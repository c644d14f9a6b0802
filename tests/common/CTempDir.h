// A fresh folder of its own under the test temporary directory, removed with
// everything in it on destruction: parallel test processes never share one.
#pragma once

#include <string>

namespace TestSupport {

class CTempDir {
public:
    explicit CTempDir(const std::string& prefix = "aaxw_test");
    ~CTempDir();
    CTempDir(const CTempDir&) = delete;
    CTempDir& operator=(const CTempDir&) = delete;

    const std::string& Path() const { return mPath; }
    // Path of `name` inside the folder (nothing is created).
    std::string File(const std::string& name) const { return mPath + "/" + name; }
    // Writes `content` to `name` inside the folder; returns its path.
    std::string WriteFile(const std::string& name, const std::string& content) const;

private:
    std::string mPath;
};

}  // namespace TestSupport
