// Turns log categories on at debug level and keeps every recorded line while
// it lives; on destruction the log is left unconfigured (nothing recorded).
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "CTempDir.h"
#include "logger/CLog.h"

namespace TestSupport {

class CLogCapture : public ILogRecordListener {
public:
    // Every category the system logs under.
    CLogCapture();
    explicit CLogCapture(const std::vector<std::string>& categories);
    ~CLogCapture() override;
    CLogCapture(const CLogCapture&) = delete;
    CLogCapture& operator=(const CLogCapture&) = delete;

    // Configures the log again and listens: needed after something tore the
    // log singleton down (the wrapper's destructor does).
    void Attach();

    void onLogRecorded(const std::string& line) override;

    bool Contains(const std::string& text) const;
    // Lines that contain `text`.
    size_t Count(const std::string& text) const;

private:
    CTempDir mConfDir;
    std::string mConfPath;
    mutable std::mutex mMutex;
    std::vector<std::string> mLines;
};

}  // namespace TestSupport
