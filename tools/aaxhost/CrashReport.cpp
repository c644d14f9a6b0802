#include "CrashReport.h"

#include <signal.h>
#include <unistd.h>

#include <cstring>
#include <initializer_list>

namespace AAXHost {

namespace {

const char* volatile gPhase = "starting";

void WriteText(const char* text)
{
    const ssize_t ignored = write(STDERR_FILENO, text, std::strlen(text));
    (void)ignored;
}

void OnCrash(int signal)
{
    // Only async-signal-safe calls from here on.
    WriteText("aaxhost: error: the plug-in crashed (");
    WriteText(signal == SIGSEGV ? "SIGSEGV" : signal == SIGBUS ? "SIGBUS" : signal == SIGFPE ? "SIGFPE"
              : signal == SIGILL ? "SIGILL" : "SIGABRT");
    WriteText(") during ");
    WriteText(gPhase);
    WriteText("\n");
    _exit(kExitPluginCrashed);
}

}  // namespace

void InstallCrashReport()
{
    struct sigaction action;
    std::memset(&action, 0, sizeof action);
    action.sa_handler = OnCrash;
    sigemptyset(&action.sa_mask);
    action.sa_flags = SA_RESETHAND;
    for (int s : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT})
        sigaction(s, &action, nullptr);
}

void SetPhase(const char* phase) { gPhase = phase; }

}  // namespace AAXHost
