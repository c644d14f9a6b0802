// Turns a crash inside plug-in code into a clear message naming what the
// host was doing, and a distinct exit code, instead of a bare signal.
#pragma once

namespace AAXHost {

constexpr int kExitPluginCrashed = 3;

void InstallCrashReport();
// Reports a plug-in that calls exit() (see MarkNormalExit).
void InstallExitReport();
// What is running now, for the report: the plug-in's code (SetPhase) or
// aaxhost's own work on files (SetHostPhase). phase must be a string
// literal (or otherwise live for the whole run).
void SetPhase(const char* phase);
void SetHostPhase(const char* phase);
// Told of every phase change (the validator's watchdog mirrors the phase
// where its parent process can read it); null stops it.
using PhaseListener = void (*)(const char* phase, bool isHost);
void SetPhaseListener(PhaseListener listener);
// Until called, a plug-in that ends the process (exit()) is reported, with
// exit code 1 however it ended it.
void MarkNormalExit();

}  // namespace AAXHost
