#include "CLogCapture.h"

#include <fstream>

namespace TestSupport {

namespace {
const std::vector<std::string> kEveryCategory{"gui",         "parameters", "fakehost", "process", "description",
                                              "bundle",      "midi",       "warning",  "init"};
}  // namespace

CLogCapture::CLogCapture() : CLogCapture(kEveryCategory) {}

CLogCapture::CLogCapture(const std::vector<std::string>& categories) : mConfPath(mConfDir.File("log.conf"))
{
    {
        std::ofstream conf(mConfPath);
        for (const std::string& category : categories)
            conf << category << " debug\n";
    }
    Attach();
}

CLogCapture::~CLogCapture()
{
    CLog* log = CSingleton<CLog>::getInstance();
    log->setRecordListener(nullptr);
    log->reloadConf("");
}

void CLogCapture::Attach()
{
    CLog* log = CSingleton<CLog>::getInstance();
    log->reloadConf(mConfPath);
    log->setRecordListener(this);
}

void CLogCapture::onLogRecorded(const std::string& line)
{
    std::lock_guard<std::mutex> lock(mMutex);
    mLines.push_back(line);
}

bool CLogCapture::Contains(const std::string& text) const { return Count(text) > 0; }

size_t CLogCapture::Count(const std::string& text) const
{
    std::lock_guard<std::mutex> lock(mMutex);
    size_t count = 0;
    for (const std::string& line : mLines)
        if (line.find(text) != std::string::npos)
            ++count;
    return count;
}

std::vector<std::string> CLogCapture::Find(const std::string& category, const std::string& level,
                                           const std::string& text) const
{
    std::lock_guard<std::mutex> lock(mMutex);
    std::vector<std::string> found;
    for (const std::string& line : mLines) {
        if (line.find("| " + category + " ") != std::string::npos &&
            line.find("| " + level + " ") != std::string::npos && line.find(text) != std::string::npos)
            found.push_back(line);
    }
    return found;
}

void CLogCapture::Clear()
{
    std::lock_guard<std::mutex> lock(mMutex);
    mLines.clear();
}

}  // namespace TestSupport
