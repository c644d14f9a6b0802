// A module standing in for the plug-in binary inside a bundle: it carries its
// own copy of the resource search and lets the tests drive it from outside.
#include <mutex>
#include <string>

#include "CSingleton.h"
#include "Locations.h"
#include "Resources.h"
#include "logger/CLog.h"

namespace {

class CCapture : public ILogRecordListener {
public:
    void onLogRecorded(const std::string& line) override
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mText += line;
    }
    std::string Take()
    {
        std::lock_guard<std::mutex> lock(mMutex);
        std::string text;
        text.swap(mText);
        return text;
    }

private:
    std::mutex mMutex;
    std::string mText;
};

// Never destroyed: the log may outlive any static of ours at exit.
CCapture* gCapture = new CCapture();
std::string gAnswer;

Morvane::Resources& Res()
{
    return *CSingleton<Morvane::Resources>::getInstance();
}

}  // namespace

#define PROBE_EXPORT extern "C" __attribute__((visibility("default")))

PROBE_EXPORT const char* ProbeDyLibPath()
{
    gAnswer = Morvane::GetDyLibFullPath();
    return gAnswer.c_str();
}

// Loads `confPath` into this module's log and records every line it keeps.
PROBE_EXPORT void ProbeStartCapture(const char* confPath)
{
    CLog* log = CSingleton<CLog>::getInstance();
    log->reloadConf(confPath);
    log->setRecordListener(gCapture);
}

PROBE_EXPORT const char* ProbeTakeCapturedLog()
{
    gAnswer = gCapture->Take();
    return gAnswer.c_str();
}

// The candidate folders, each followed by "\n"; builds them on first use.
PROBE_EXPORT const char* ProbeFolders()
{
    if (Res().GetFolders().empty())
        Res().FillResourcesFolderList();
    gAnswer.clear();
    for (const std::string& folder : Res().GetFolders())
        gAnswer += folder + "\n";
    return gAnswer.c_str();
}

// Null when not found; `keep` is what the output held before the call, to
// show that a failed search leaves it alone.
PROBE_EXPORT const char* ProbeGetAbsolutePath(const char* relative, const char* keep)
{
    gAnswer = keep;
    if (!Res().GetAbsolutePath(relative, gAnswer))
        return gAnswer == keep ? nullptr : "output was modified";
    return gAnswer.c_str();
}
