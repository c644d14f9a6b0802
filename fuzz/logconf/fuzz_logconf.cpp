// Arbitrary bytes as a log.conf: parsed into a category table, which every
// recorded line then consults.
#include <cstddef>
#include <cstdint>
#include <iostream>
#include <sstream>
#include <string>

#include "logger/CLog.h"

namespace {
CLog* gLog = nullptr;
std::ostringstream gSink;
}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    // The parser echoes every line it reads; keep the fuzzer's output readable.
    std::cout.rdbuf(gSink.rdbuf());
    gLog = new CLog;
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    CLog::CategoryTable table;
    gLog->parseConfText(std::string(reinterpret_cast<const char*>(data), size), table);
    for (const auto& entry : table)
        if (static_cast<int>(entry.second) < 0 || static_cast<int>(entry.second) >= kLogLevelCount)
            __builtin_trap();
    gSink.str(std::string());
    return 0;
}
