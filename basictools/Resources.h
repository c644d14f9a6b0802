// Finds the product's files (log.conf, the wrapped plug-in, ...) among an
// ordered list of folders around the bundle that contains this code.
#pragma once

#include <string>
#include <vector>

namespace Morvane {

class Resources {
public:
    Resources() = default;
    virtual ~Resources() = default;

    // Appends the nine candidate folders, in search order, derived from this
    // image's own path. False (list untouched) when that path is unknown.
    bool FillResourcesFolderList();

    // First candidate folder in which `relativePath` opens for reading; the
    // full path goes to `outAbsolutePath`. False, output untouched, when no
    // candidate opens. Fills the folder list on first use.
    bool GetAbsolutePath(const std::string& relativePath, std::string& outAbsolutePath);

    const std::vector<std::string>& GetFolders() const { return m_folders; }

private:
    // Each entry is empty or ends in "/"; filled once, never re-sorted.
    std::vector<std::string> m_folders;
};

}  // namespace Morvane
