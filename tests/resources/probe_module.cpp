// A module standing in for the plug-in binary inside a bundle: it carries its
// own copy of the resource search and lets the tests drive it from outside.
#include <string>

#include "CSingleton.h"
#include "Resources.h"
#include "logger/CLog.h"

namespace {

// Lines are recorded on the calling thread, the test's only one.
struct CCapture : ILogRecordListener {
    void onLogRecorded(const std::string& line) override { mText += line; }
    std::string mText;
};

// Never destroyed: the log may outlive any static of ours at exit.
CCapture* gCapture = new CCapture();
std::string gAnswer;

Morvane::Resources& Res() { return *CSingleton<Morvane::Resources>::getInstance(); }

}  // namespace

#define PROBE_EXPORT extern "C" __attribute__((visibility("default")))

// Loads `confPath` into this module's log and records every line it keeps.
PROBE_EXPORT void ProbeStartCapture(const char* confPath)
{
    CSingleton<CLog>::getInstance()->reloadConf(confPath);
    CSingleton<CLog>::getInstance()->setRecordListener(gCapture);
}

PROBE_EXPORT const char* ProbeTakeCapturedLog()
{
    gAnswer.swap(gCapture->mText);
    gCapture->mText.clear();
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
