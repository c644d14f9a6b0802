#include "TavrionBankChunk.h"

#include <cmath>
#include <cstring>

namespace Tavrion {
namespace {

const unsigned char kMagic[4] = {'T', 'V', 'B', 'K'};

void PutU32(unsigned char* out, uint32_t value)
{
    for (int i = 0; i < 4; ++i)
        out[i] = static_cast<unsigned char>(value >> (8 * i));
}

uint32_t GetU32(const unsigned char* in)
{
    return static_cast<uint32_t>(in[0]) | (static_cast<uint32_t>(in[1]) << 8) |
           (static_cast<uint32_t>(in[2]) << 16) | (static_cast<uint32_t>(in[3]) << 24);
}

}  // namespace

void WriteBankChunk(const float (&values)[kNumParameters], std::vector<unsigned char>& out)
{
    out.assign(kBankHeaderSize + 4 * kNumParameters, 0);
    std::memcpy(out.data(), kMagic, 4);
    PutU32(out.data() + 4, kBankFormatVersion);
    PutU32(out.data() + 8, kNumParameters);
    for (int i = 0; i < kNumParameters; ++i) {
        uint32_t bits;
        std::memcpy(&bits, &values[i], sizeof(bits));
        PutU32(out.data() + kBankHeaderSize + 4 * i, bits);
    }
}

bool ReadBankChunk(const void* data, size_t size, float (&values)[kNumParameters])
{
    if (data == nullptr || size < kBankHeaderSize)
        return false;
    const unsigned char* bytes = static_cast<const unsigned char*>(data);
    if (std::memcmp(bytes, kMagic, 4) != 0)
        return false;
    const uint32_t version = GetU32(bytes + 4);
    const uint32_t count = GetU32(bytes + 8);
    if (version == 0 || version > kBankFormatVersion || count > kMaxBankValues)
        return false;
    if (size != kBankHeaderSize + 4u * static_cast<size_t>(count))
        return false;

    float loaded[kNumParameters];
    std::memcpy(loaded, values, sizeof(loaded));
    for (uint32_t i = 0; i < count; ++i) {
        const uint32_t bits = GetU32(bytes + kBankHeaderSize + 4 * i);
        float value;
        std::memcpy(&value, &bits, sizeof(value));
        if (!std::isfinite(value) || value < 0.0f || value > 1.0f)
            return false;
        // Values of parameters this build does not know are skipped.
        if (i < static_cast<uint32_t>(kNumParameters))
            loaded[i] = value;
    }
    std::memcpy(values, loaded, sizeof(loaded));
    return true;
}

}  // namespace Tavrion
