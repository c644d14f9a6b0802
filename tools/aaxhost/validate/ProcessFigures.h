// What a process holds, read from /proc: resident memory, open files and
// threads, to compare before and after repeated work.
#pragma once

#include <cstdint>

namespace AAXHost {

struct SProcessFigures {
    int64_t residentBytes = 0;
    int openFiles = 0;
    int threads = 0;
};

SProcessFigures ReadProcessFigures();

}  // namespace AAXHost
