// The state file of aaxhost: every chunk of an effect instance, so that a
// state saved after one render can be restored into a fresh instance.
//
// Layout, all integers little-endian:
//   8 bytes  "AAXHSTAT"
//   u32      format version (1)
//   u32      number of chunks
//   per chunk:
//     u32    chunk ID (the four-character code as a number)
//     i32    chunk version (fVersion)
//     32     chunk name (fName)
//     u32    data size in bytes
//     data
// Nothing may follow the last chunk. Files are read as untrusted input.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "AAX_IEffectParameters.h"

namespace AAXHost {

struct SStateChunk {
    AAX_CTypeID id = 0;
    int32_t version = 0;
    unsigned char name[32] = {};
    std::vector<char> data;
};

constexpr uint32_t kStateFileVersion = 1;
constexpr uint32_t kStateMaxChunks = 4096;

std::vector<uint8_t> SerializeState(const std::vector<SStateChunk>& chunks);
bool ParseState(const uint8_t* bytes, size_t size, std::vector<SStateChunk>& chunks, std::string& error);

bool WriteStateFile(const std::string& path, const std::vector<SStateChunk>& chunks, std::string& error);
bool ReadStateFile(const std::string& path, std::vector<SStateChunk>& chunks, std::string& error);

// Every chunk of the effect, through GetNumberOfChunks, GetChunkIDFromIndex,
// GetChunkSize and GetChunk.
bool SaveEffectState(AAX_IACFEffectParameters& effect, std::vector<SStateChunk>& chunks, std::string& error);
// SetChunk for each chunk, in file order.
bool LoadEffectState(AAX_IACFEffectParameters& effect, const std::vector<SStateChunk>& chunks, std::string& error);

}  // namespace AAXHost
