// Tavrion's bank chunk: what effGetChunk hands out and effSetChunk accepts.
//
// Layout, little-endian: "TVBK" | uint32 format version | uint32 value count
// | count x float32 normalised values. Version 1 is the only one written;
// a chunk from a later version, a wrong size or a value outside [0, 1] is
// refused whole.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "TavrionParameters.h"

namespace Tavrion {

constexpr uint32_t kBankFormatVersion = 1;
constexpr size_t kBankHeaderSize = 12;
// Guards against absurd counts in damaged chunks.
constexpr uint32_t kMaxBankValues = 256;

void WriteBankChunk(const float (&values)[kNumParameters], std::vector<unsigned char>& out);

// True and `values` updated when the chunk is valid; values a shorter
// (older) chunk lacks keep their current setting. False leaves `values` as is.
bool ReadBankChunk(const void* data, size_t size, float (&values)[kNumParameters]);

}  // namespace Tavrion
