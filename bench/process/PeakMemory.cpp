#include "PeakMemory.h"

#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "BenchRig.h"

extern char** environ;

namespace BenchProcess {

namespace {

// A "Name:  <n> kB" line of /proc/self/status; -1 when absent.
long StatusKb(const char* name)
{
    FILE* status = std::fopen("/proc/self/status", "r");
    if (!status)
        return false;
    long value = -1;
    char line[256];
    const size_t length = std::strlen(name);
    while (std::fgets(line, sizeof line, status))
        if (std::strncmp(line, name, length) == 0) {
            value = std::strtol(line + length, nullptr, 10);
            break;
        }
    std::fclose(status);
    return value;
}

long Field(const std::string& output, const char* key)
{
    const size_t at = output.rfind(key);
    return at == std::string::npos ? -1 : std::strtol(output.c_str() + at + std::strlen(key), nullptr, 10);
}

}  // namespace

int RunPeakMemoryChild(const std::string& bundlePath, int instances)
{
    std::string error;
    {
        CBenchRig rig;
        // A quarter of a second of audio, each instance playing an
        // eight-note chord, so that every lazily sized buffer exists.
        constexpr int kBlock = 256;
        if (instances > 0) {
            if (!rig.Open(bundlePath, kBlock, instances, error)) {
                std::fprintf(stderr, "bench_process: %s\n", error.c_str());
                return 1;
            }
            rig.RunBuffer(ChordOn(8));
            for (int i = 0; i < 48; ++i)
                rig.RunBuffer({});
        } else if (!OpenSession(bundlePath, error)) {
            std::fprintf(stderr, "bench_process: %s\n", error.c_str());
            return 1;
        }
        // getrusage's ru_maxrss survives execve, so in a child started from
        // this (already large) program it would report the parent's size;
        // the address space's own high-water mark starts afresh at exec.
        const long peak = StatusKb("VmHWM:"), now = StatusKb("VmRSS:");
        rusage usage{};
        getrusage(RUSAGE_SELF, &usage);
        std::printf("vm_hwm_kb=%ld vm_rss_kb=%ld ru_maxrss_kb=%ld\n", peak, now, usage.ru_maxrss);
        std::fflush(stdout);
    }
    if (!CloseSessions(error)) {
        std::fprintf(stderr, "bench_process: %s", error.c_str());
        return 1;
    }
    return 0;
}

bool MeasurePeakMemory(const std::string& bundlePath, int instances, SMemoryFigures& out, std::string& error)
{
    char self[4096];
    const ssize_t length = readlink("/proc/self/exe", self, sizeof self - 1);
    if (length <= 0) {
        error = "cannot find this program's own path";
        return false;
    }
    self[length] = '\0';
    int pipeFds[2];
    if (pipe(pipeFds) != 0) {
        error = "pipe failed";
        return false;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, pipeFds[1], STDOUT_FILENO);
    posix_spawn_file_actions_addclose(&actions, pipeFds[0]);
    posix_spawn_file_actions_addclose(&actions, pipeFds[1]);
    const std::string count = std::to_string(instances);
    char* argv[] = {self, const_cast<char*>(kPeakMemoryFlag), const_cast<char*>(bundlePath.c_str()),
                    const_cast<char*>(count.c_str()), nullptr};
    pid_t pid = 0;
    const int spawned = posix_spawn(&pid, self, &actions, nullptr, argv, environ);
    posix_spawn_file_actions_destroy(&actions);
    close(pipeFds[1]);
    if (spawned != 0) {
        close(pipeFds[0]);
        error = std::string("cannot start the measuring child: ") + std::strerror(spawned);
        return false;
    }
    std::string output;
    char buffer[512];
    ssize_t n;
    while ((n = read(pipeFds[0], buffer, sizeof buffer)) > 0)
        output.append(buffer, static_cast<size_t>(n));
    close(pipeFds[0]);
    int status = 0;
    waitpid(pid, &status, 0);
    out.peakKb = Field(output, "vm_hwm_kb=");
    out.currentKb = Field(output, "vm_rss_kb=");
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0 || out.peakKb < 0) {
        error = "the measuring child failed (see its messages above)";
        return false;
    }
    return true;
}

}  // namespace BenchProcess
