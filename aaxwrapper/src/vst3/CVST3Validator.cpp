#include "vst3/CVST3Validator.h"

#include <cstdio>
#include <cstdlib>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

#include "logger/CLog.h"

namespace Morvane {
namespace vst3 {

namespace {
bool isExecutable(const std::string& path) { return !path.empty() && access(path.c_str(), X_OK) == 0; }
}  // namespace

std::string FindValidatorProgram()
{
    if (const char* configured = std::getenv("VST3_VALIDATOR")) {
        if (isExecutable(configured))
            return configured;
    }
    const char* pathList = std::getenv("PATH");
    if (!pathList)
        return {};
    std::string paths(pathList);
    size_t start = 0;
    while (start <= paths.size()) {
        size_t end = paths.find(':', start);
        if (end == std::string::npos)
            end = paths.size();
        std::string dir = paths.substr(start, end - start);
        if (!dir.empty()) {
            std::string candidate = dir + "/validator";
            if (isExecutable(candidate))
                return candidate;
        }
        start = end + 1;
    }
    return {};
}

int RunValidator(const std::string& bundlePath)
{
    const std::string program = FindValidatorProgram();
    if (program.empty()) {
        MV_LOG("bundle", kLogInfo, "No VST3 validator available (set VST3_VALIDATOR)");
        return -1;
    }
    MV_LOG("bundle", kLogInfo, "Run VST3 validator ", program, " on ", bundlePath);
    std::fflush(stdout);
    // The validator writes its own report; its first argument is the name it
    // knows itself by. posix_spawn, not fork: the host process is threaded.
    std::string arg0 = "vstvalidator";
    std::string arg1 = bundlePath;
    char* argv[] = {&arg0[0], &arg1[0], nullptr};
    pid_t pid = 0;
    if (posix_spawn(&pid, program.c_str(), nullptr, nullptr, argv, environ) != 0)
        return -1;
    int status = 0;
    if (waitpid(pid, &status, 0) < 0)
        return -1;
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    MV_LOG("bundle", kLogInfo, "VST3 validator exit status ", code);
    return code;
}

}  // namespace vst3
}  // namespace Morvane
