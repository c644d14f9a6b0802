#include "CTrace.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <mutex>

namespace MrvTest {

namespace {
std::mutex gTraceMutex;
}

void Trace(const char* format, ...)
{
    std::lock_guard<std::mutex> lock(gTraceMutex);
    const char* path = std::getenv("MRV_VST3_TRACE");
    if (!path || !*path)
        return;
    FILE* file = std::fopen(path, "a");
    if (!file)
        return;
    va_list args;
    va_start(args, format);
    std::vfprintf(file, format, args);
    va_end(args);
    std::fputc('\n', file);
    std::fclose(file);
}

}  // namespace MrvTest
