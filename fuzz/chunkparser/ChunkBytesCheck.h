// Shared by the fuzzer and the corpus replay test: loads raw bytes as the
// data of a chunk allocated at exactly that size, then checks that what was
// read survives a write/read cycle unchanged.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "AAX_CChunkDataParser.h"

namespace chunk_check {

struct TypedEntry {
    int32_t type;
    std::string name;
    int64_t value;
    std::string text;
    bool operator==(const TypedEntry& o) const
    {
        return type == o.type && name == o.name && value == o.value && text == o.text;
    }
};

inline std::vector<TypedEntry> TypedEntries(const AAX_CChunkDataParser& parser)
{
    std::vector<TypedEntry> out;
    for (size_t i = 0; i < parser.NumEntries(); ++i) {
        const auto& e = parser.Entry(i);
        if (e.mDataType == AAX_CChunkDataParser::kUnknownType) continue;
        // Narrow values are compared on the bits that are written.
        int64_t value = e.mIntValue;
        if (e.mDataType == AAX_CChunkDataParser::kFloatType) value &= 0xFFFFFFFF;
        out.push_back({e.mDataType, e.mDataName.StdString(), value, e.mStringValue.StdString()});
    }
    return out;
}

inline AAX_SPlugInChunk* NewChunk(const uint8_t* data, size_t size)
{
    auto* chunk = static_cast<AAX_SPlugInChunk*>(std::calloc(1, offsetof(AAX_SPlugInChunk, fData) + size));
    chunk->fSize = static_cast<int32_t>(size);
    if (size > 0) std::memcpy(chunk->fData, data, size);
    return chunk;
}

// Empty string on success, otherwise what went wrong.
inline std::string CheckChunkBytes(const uint8_t* data, size_t size)
{
    if (size > (1u << 24)) return std::string();  // far beyond any real chunk
    AAX_SPlugInChunk* chunk = NewChunk(data, size);
    AAX_CChunkDataParser first;
    first.LoadChunk(chunk);
    std::free(chunk);

    const int32_t rewrittenSize = first.GetChunkDataSize();
    AAX_SPlugInChunk* rewritten = static_cast<AAX_SPlugInChunk*>(
        std::calloc(1, offsetof(AAX_SPlugInChunk, fData) + static_cast<size_t>(rewrittenSize)));
    std::string problem;
    if (first.GetChunkData(rewritten) != 0 || rewritten->fSize != rewrittenSize) {
        problem = "rewrite failed";
    } else {
        AAX_CChunkDataParser second;
        second.LoadChunk(rewritten);
        if (!(TypedEntries(first) == TypedEntries(second))) problem = "entries changed across a write/read cycle";
    }
    std::free(rewritten);
    return problem;
}

}  // namespace chunk_check
