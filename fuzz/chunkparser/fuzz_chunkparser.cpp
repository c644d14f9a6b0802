// libFuzzer entry: arbitrary bytes as chunk data must never crash, hang or
// over-read, and whatever is read must write back the same way.
#include <cstdio>
#include <cstdlib>

#include "ChunkBytesCheck.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const std::string problem = chunk_check::CheckChunkBytes(data, size);
    if (!problem.empty()) {
        std::fprintf(stderr, "%s\n", problem.c_str());
        std::abort();
    }
    return 0;
}
