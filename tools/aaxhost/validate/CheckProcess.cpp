#include "CheckProcess.h"

#include <poll.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "CrashReport.h"

namespace AAXHost {

namespace {

// Lives in a shared anonymous mapping made before the fork.
struct SWatchedState {
    std::atomic<uint64_t> beats;
    std::atomic<uint32_t> phaseVersion;  // odd while the phase is being written
    char phase[192];
};
static_assert(std::atomic<uint64_t>::is_always_lock_free, "beats are shared between processes");

SWatchedState* gShared = nullptr;  // set in the child only

void WritePhase(const char* text)
{
    if (!gShared)
        return;
    gShared->phaseVersion.fetch_add(1, std::memory_order_acq_rel);
    std::strncpy(gShared->phase, text, sizeof gShared->phase - 1);
    gShared->phase[sizeof gShared->phase - 1] = '\0';
    gShared->phaseVersion.fetch_add(1, std::memory_order_acq_rel);
    gShared->beats.fetch_add(1, std::memory_order_relaxed);
}

void OnPhase(const char* phase, bool) { WritePhase(phase); }

std::string ReadPhase(const SWatchedState& state)
{
    char copy[sizeof state.phase];
    for (int attempt = 0; attempt < 100; ++attempt) {
        const uint32_t before = state.phaseVersion.load(std::memory_order_acquire);
        if (before & 1u)
            continue;
        std::memcpy(copy, state.phase, sizeof copy);
        if (state.phaseVersion.load(std::memory_order_acquire) == before)
            break;
    }
    copy[sizeof copy - 1] = '\0';
    return copy;
}

const char* SignalName(int signal)
{
    switch (signal) {
    case SIGSEGV: return "SIGSEGV";
    case SIGBUS: return "SIGBUS";
    case SIGFPE: return "SIGFPE";
    case SIGILL: return "SIGILL";
    case SIGABRT: return "SIGABRT";
    case SIGKILL: return "SIGKILL";
    case SIGTERM: return "SIGTERM";
    default: return "a signal";
    }
}

[[noreturn]] void RunChild(int writeEnd, const std::function<std::string()>& body)
{
    // Plug-ins print banners; the parent's report keeps standard output.
    dup2(STDERR_FILENO, STDOUT_FILENO);
    SetPhaseListener(OnPhase);
    const std::string result = body();
    SetPhaseListener(nullptr);
    size_t written = 0;
    while (written < result.size()) {
        const ssize_t n = write(writeEnd, result.data() + written, result.size() - written);
        if (n <= 0)
            break;
        written += static_cast<size_t>(n);
    }
    close(writeEnd);
    WritePhase("the check process's way out (static destructors, the plug-in's threads)");
    std::fflush(nullptr);
    MarkNormalExit();
    // exit(), not _exit(): a sanitizer sets the exit code of a run that
    // found a fault on the way out.
    std::exit(0);
}

}  // namespace

void SetCheckPhase(const std::string& phase) { WritePhase(phase.c_str()); }

void CheckBeat()
{
    if (gShared)
        gShared->beats.fetch_add(1, std::memory_order_relaxed);
}

SCheckProcessOutcome RunCheckProcess(const std::function<std::string()>& body, double callTimeout)
{
    SCheckProcessOutcome outcome;
    const auto started = std::chrono::steady_clock::now();
    void* mapping = mmap(nullptr, sizeof(SWatchedState), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED) {
        outcome.failure = "could not map memory shared with the check's process";
        return outcome;
    }
    auto* state = new (mapping) SWatchedState();
    std::strcpy(state->phase, "starting");
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0) {
        munmap(mapping, sizeof(SWatchedState));
        outcome.failure = "could not make a pipe to the check's process";
        return outcome;
    }
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        close(pipeEnds[0]);
        gShared = state;
        RunChild(pipeEnds[1], body);
    }
    close(pipeEnds[1]);
    if (child < 0) {
        close(pipeEnds[0]);
        munmap(mapping, sizeof(SWatchedState));
        outcome.failure = "could not start the check's process";
        return outcome;
    }

    uint64_t lastBeats = state->beats.load(std::memory_order_relaxed);
    auto lastProgress = std::chrono::steady_clock::now();
    bool hung = false, open = true;
    char buffer[4096];
    while (open) {
        pollfd p{pipeEnds[0], POLLIN, 0};
        const int ready = poll(&p, 1, 100);
        if (ready > 0) {
            const ssize_t n = read(pipeEnds[0], buffer, sizeof buffer);
            if (n > 0)
                outcome.result.append(buffer, static_cast<size_t>(n));
            else
                open = false;
        }
        const uint64_t beats = state->beats.load(std::memory_order_relaxed);
        const auto now = std::chrono::steady_clock::now();
        if (beats != lastBeats) {
            lastBeats = beats;
            lastProgress = now;
        } else if (open && std::chrono::duration<double>(now - lastProgress).count() > callTimeout) {
            hung = true;
            kill(child, SIGKILL);
            open = false;
        }
    }
    close(pipeEnds[0]);
    // The way out (static destructors, a plug-in's own threads) can hang too.
    int status = 0;
    const auto closed = std::chrono::steady_clock::now();
    for (;;) {
        const pid_t done = waitpid(child, &status, WNOHANG);
        if (done == child || (done < 0 && errno != EINTR))
            break;
        if (!hung && std::chrono::duration<double>(std::chrono::steady_clock::now() - closed).count() > callTimeout) {
            hung = true;
            kill(child, SIGKILL);
        }
        usleep(5000);
    }
    const std::string phase = ReadPhase(*state);
    munmap(mapping, sizeof(SWatchedState));
    outcome.seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();

    char text[400];
    if (hung) {
        std::snprintf(text, sizeof text, "hung: no call returned for %.1f s during %s", callTimeout, phase.c_str());
        outcome.failure = text;
    } else if (WIFSIGNALED(status)) {
        std::snprintf(text, sizeof text, "crashed (%s) during %s", SignalName(WTERMSIG(status)), phase.c_str());
        outcome.failure = text;
    } else if (WIFEXITED(status) && WEXITSTATUS(status) != 0) {
        if (outcome.result.empty())
            std::snprintf(text, sizeof text, "the check's process ended with exit code %d during %s",
                          WEXITSTATUS(status), phase.c_str());
        else
            std::snprintf(text, sizeof text,
                          "the check's process ended with exit code %d after the check (a sanitizer found a fault; "
                          "its report is above)",
                          WEXITSTATUS(status));
        outcome.failure = text;
    }
    outcome.delivered = !outcome.result.empty() && !hung && !WIFSIGNALED(status);
    return outcome;
}

}  // namespace AAXHost
