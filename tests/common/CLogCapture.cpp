#include "CLogCapture.h"

#include <algorithm>
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
    return static_cast<size_t>(std::count_if(mLines.begin(), mLines.end(), [&text](const std::string& line) {
        return line.find(text) != std::string::npos;
    }));
}

}  // namespace TestSupport
