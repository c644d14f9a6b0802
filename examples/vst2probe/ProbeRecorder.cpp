#include "ProbeRecorder.h"

#include <cstdarg>
#include <cstdlib>

namespace Vst2Probe {

CRecorder::CRecorder()
{
    const char* path = std::getenv("VST2PROBE_LOG");
    if (path != nullptr && path[0] != '\0')
        mFile = std::fopen(path, "a");
}

CRecorder::~CRecorder()
{
    if (mFile != nullptr)
        std::fclose(mFile);
}

void CRecorder::Line(const char* format, ...)
{
    if (mFile == nullptr)
        return;
    va_list args;
    va_start(args, format);
    std::vfprintf(mFile, format, args);
    va_end(args);
    std::fputc('\n', mFile);
    // Flushed at once: a test reads the file while the plug-in is still loaded.
    std::fflush(mFile);
}

long EnvInteger(const char* name, long fallback)
{
    const char* text = std::getenv(name);
    if (text == nullptr || text[0] == '\0')
        return fallback;
    char* end = nullptr;
    const long value = std::strtol(text, &end, 0);
    return end != text ? value : fallback;
}

}  // namespace Vst2Probe
