// The file our test plug-ins append one line per call to, named to them by
// an environment variable that is set while this object lives.
#pragma once

#include <string>
#include <vector>

#include "CTempDir.h"

namespace TestSupport {

class CPluginRecordFile {
public:
    explicit CPluginRecordFile(const std::string& environmentVariable);
    ~CPluginRecordFile();
    CPluginRecordFile(const CPluginRecordFile&) = delete;
    CPluginRecordFile& operator=(const CPluginRecordFile&) = delete;

    std::vector<std::string> Lines() const;
    // Lines starting with `prefix`, in order.
    std::vector<std::string> LinesStartingWith(const std::string& prefix) const;
    // Position of the first line starting with `prefix`, or -1.
    int IndexOf(const std::string& prefix) const;
    // Empties the file; a plug-in holding it open keeps appending to it.
    void Clear() const;
    const std::string& Path() const { return mPath; }

private:
    std::string mVariable;
    CTempDir mDir;
    std::string mPath;
};

}  // namespace TestSupport
