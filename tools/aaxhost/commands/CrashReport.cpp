#include "CrashReport.h"

#include <signal.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <initializer_list>

namespace AAXHost {

namespace {

const char* volatile gPhase = "starting";
volatile bool gPhaseIsHost = true;
volatile bool gNormalExit = false;
PhaseListener volatile gListener = nullptr;

void WriteText(const char* text)
{
    const ssize_t ignored = write(STDERR_FILENO, text, std::strlen(text));
    (void)ignored;
}

void OnCrash(int signal)
{
    // Only async-signal-safe calls from here on.
    WriteText(gPhaseIsHost ? "aaxhost: error: aaxhost crashed (" : "aaxhost: error: the plug-in crashed (");
    WriteText(signal == SIGSEGV ? "SIGSEGV" : signal == SIGBUS ? "SIGBUS" : signal == SIGFPE ? "SIGFPE"
              : signal == SIGILL ? "SIGILL" : "SIGABRT");
    WriteText(gPhaseIsHost ? ") while " : ") during ");
    WriteText(gPhase);
    WriteText("\n");
    _exit(kExitPluginCrashed);
}

// Plug-ins have been seen to call exit() (amsynth's editor without a
// display): say so instead of ending silently.
void OnExit()
{
    if (gNormalExit)
        return;
    WriteText("aaxhost: error: the plug-in ended the process during ");
    WriteText(gPhase);
    WriteText("\n");
    _exit(1);
}

}  // namespace

void InstallExitReport() { std::atexit(OnExit); }

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

void SetPhase(const char* phase)
{
    gPhase = phase;
    gPhaseIsHost = false;
    if (PhaseListener listener = gListener)
        listener(phase, false);
}

void SetHostPhase(const char* phase)
{
    gPhase = phase;
    gPhaseIsHost = true;
    if (PhaseListener listener = gListener)
        listener(phase, true);
}

void SetPhaseListener(PhaseListener listener) { gListener = listener; }

void MarkNormalExit() { gNormalExit = true; }

}  // namespace AAXHost
