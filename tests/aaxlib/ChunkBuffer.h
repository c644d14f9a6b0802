// A plug-in chunk record allocated at exactly its stated size, so that any
// read past fSize lands outside the allocation (caught under ASan).
#pragma once

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

#include "AAX.h"

namespace aaxlib_test {

struct FreeDeleter {
    void operator()(void* p) const { std::free(p); }
};
using ChunkPtr = std::unique_ptr<AAX_SPlugInChunk, FreeDeleter>;

inline ChunkPtr MakeChunk(int32_t dataSize)
{
    const size_t bytes = offsetof(AAX_SPlugInChunk, fData) + static_cast<size_t>(dataSize > 0 ? dataSize : 0);
    auto* chunk = static_cast<AAX_SPlugInChunk*>(std::calloc(1, bytes));
    chunk->fSize = dataSize;
    return ChunkPtr(chunk);
}

inline ChunkPtr MakeChunk(const std::vector<unsigned char>& data)
{
    ChunkPtr chunk = MakeChunk(static_cast<int32_t>(data.size()));
    if (!data.empty()) std::memcpy(chunk->fData, data.data(), data.size());
    return chunk;
}

inline std::vector<unsigned char> DataOf(const AAX_SPlugInChunk& chunk)
{
    const auto* p = reinterpret_cast<const unsigned char*>(chunk.fData);
    return std::vector<unsigned char>(p, p + chunk.fSize);
}

}  // namespace aaxlib_test
