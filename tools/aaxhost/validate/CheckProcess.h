// Runs one validation check in a child process under a watchdog, so that a
// plug-in that crashes or hangs fails that check instead of ending the run.
// The child names what it is doing (the phase) and beats on every call it
// survives; both live in memory the parent can read.
#pragma once

#include <functional>
#include <string>

namespace AAXHost {

struct SCheckProcessOutcome {
    bool delivered = false;  // the child handed back its result
    std::string result;      // what it handed back (JSON text)
    std::string failure;     // why the process itself failed, empty when it did not
    double seconds = 0.0;
};

// body runs in the child and returns the result text. A child that makes no
// progress for callTimeout seconds is killed and reported as hung.
SCheckProcessOutcome RunCheckProcess(const std::function<std::string()>& body, double callTimeout);

// In the child: what it is doing now (shown when it crashes or hangs).
void SetCheckPhase(const std::string& phase);
// In the child: a call returned; the watchdog restarts its clock.
void CheckBeat();

}  // namespace AAXHost
