#include "ProcessFigures.h"

#include <dirent.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace AAXHost {

SProcessFigures ReadProcessFigures()
{
    SProcessFigures f;
    if (FILE* statm = std::fopen("/proc/self/statm", "r")) {
        long long size = 0, resident = 0;
        if (std::fscanf(statm, "%lld %lld", &size, &resident) == 2)
            f.residentBytes = resident * sysconf(_SC_PAGESIZE);
        std::fclose(statm);
    }
    if (DIR* fds = opendir("/proc/self/fd")) {
        while (dirent* entry = readdir(fds))
            if (entry->d_name[0] != '.')
                ++f.openFiles;
        closedir(fds);
        --f.openFiles;  // the listing's own descriptor
    }
    if (FILE* status = std::fopen("/proc/self/status", "r")) {
        char line[256];
        while (std::fgets(line, sizeof line, status))
            if (std::strncmp(line, "Threads:", 8) == 0)
                f.threads = std::atoi(line + 8);
        std::fclose(status);
    }
    return f;
}

}  // namespace AAXHost
