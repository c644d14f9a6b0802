// Turns a crash inside plug-in code into a clear message naming what the
// host was doing, and a distinct exit code, instead of a bare signal.
#pragma once

namespace AAXHost {

constexpr int kExitPluginCrashed = 3;

void InstallCrashReport();
// phase must be a string literal (or otherwise live for the whole run).
void SetPhase(const char* phase);

}  // namespace AAXHost
