// Appends one text line per observed host action to the file named by the
// environment variable VST2PROBE_LOG (nothing is written without it).
#pragma once

#include <cstdio>

namespace Vst2Probe {

class CRecorder {
public:
    CRecorder();
    ~CRecorder();
    CRecorder(const CRecorder&) = delete;
    CRecorder& operator=(const CRecorder&) = delete;

    void Line(const char* format, ...) __attribute__((format(printf, 2, 3)));

private:
    std::FILE* mFile = nullptr;
};

// Environment value as an integer (any C base prefix), or the fallback.
long EnvInteger(const char* name, long fallback);

}  // namespace Vst2Probe
