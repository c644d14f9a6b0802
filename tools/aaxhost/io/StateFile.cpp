#include "StateFile.h"

#include "RegularFile.h"

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include "ResultText.h"

namespace AAXHost {

namespace {

constexpr char kMagic[8] = {'A', 'A', 'X', 'H', 'S', 'T', 'A', 'T'};
constexpr size_t kChunkHeaderBytes = 4 + 4 + 32 + 4;
constexpr uint64_t kMaxFileBytes = 1ull << 30;

void PutU32(std::vector<uint8_t>& out, uint32_t v)
{
    for (int i = 0; i < 4; ++i)
        out.push_back(static_cast<uint8_t>(v >> (8 * i)));
}

uint32_t GetU32(const uint8_t* p)
{
    return static_cast<uint32_t>(p[0]) | (static_cast<uint32_t>(p[1]) << 8) | (static_cast<uint32_t>(p[2]) << 16) |
           (static_cast<uint32_t>(p[3]) << 24);
}

std::string ChunkText(AAX_CTypeID id)
{
    char buf[16];
    std::snprintf(buf, sizeof buf, "0x%08X", id);
    return buf;
}

// A chunk record the host allocates: the header plus size bytes of data.
struct SChunkBuffer {
    explicit SChunkBuffer(size_t dataSize)
        : bytes(std::make_unique<uint64_t[]>((sizeof(AAX_SPlugInChunkHeader) + dataSize + 1 + 7) / 8))
    {
        std::memset(bytes.get(), 0, ((sizeof(AAX_SPlugInChunkHeader) + dataSize + 1 + 7) / 8) * 8);
    }
    AAX_SPlugInChunk* Chunk() { return reinterpret_cast<AAX_SPlugInChunk*>(bytes.get()); }
    std::unique_ptr<uint64_t[]> bytes;
};

}  // namespace

std::vector<uint8_t> SerializeState(const std::vector<SStateChunk>& chunks)
{
    std::vector<uint8_t> out(kMagic, kMagic + sizeof kMagic);
    PutU32(out, kStateFileVersion);
    PutU32(out, static_cast<uint32_t>(chunks.size()));
    for (const auto& c : chunks) {
        PutU32(out, c.id);
        PutU32(out, static_cast<uint32_t>(c.version));
        out.insert(out.end(), c.name, c.name + sizeof c.name);
        PutU32(out, static_cast<uint32_t>(c.data.size()));
        out.insert(out.end(), c.data.begin(), c.data.end());
    }
    return out;
}

bool ParseState(const uint8_t* bytes, size_t size, std::vector<SStateChunk>& chunks, std::string& error)
{
    chunks.clear();
    if (!bytes || size < sizeof kMagic + 8 || std::memcmp(bytes, kMagic, sizeof kMagic) != 0) {
        error = "not an aaxhost state file";
        return false;
    }
    size_t pos = sizeof kMagic;
    const uint32_t version = GetU32(bytes + pos);
    const uint32_t count = GetU32(bytes + pos + 4);
    pos += 8;
    if (version != kStateFileVersion) {
        error = "unsupported state file version " + std::to_string(version);
        return false;
    }
    if (count > kStateMaxChunks) {
        error = "state file claims " + std::to_string(count) + " chunks";
        return false;
    }
    for (uint32_t i = 0; i < count; ++i) {
        if (size - pos < kChunkHeaderBytes) {
            error = "state file truncated in the header of chunk " + std::to_string(i);
            return false;
        }
        SStateChunk c;
        c.id = GetU32(bytes + pos);
        c.version = static_cast<int32_t>(GetU32(bytes + pos + 4));
        std::memcpy(c.name, bytes + pos + 8, sizeof c.name);
        const uint32_t dataSize = GetU32(bytes + pos + 40);
        pos += kChunkHeaderBytes;
        if (dataSize > size - pos) {
            error = "state file truncated in the data of chunk " + std::to_string(i) + " (" + std::to_string(dataSize) +
                    " bytes announced, " + std::to_string(size - pos) + " left)";
            return false;
        }
        if (dataSize > static_cast<uint32_t>(INT32_MAX)) {
            error = "chunk " + std::to_string(i) + " is too large";
            return false;
        }
        c.data.assign(bytes + pos, bytes + pos + dataSize);
        pos += dataSize;
        chunks.push_back(std::move(c));
    }
    if (pos != size) {
        error = "state file has " + std::to_string(size - pos) + " unexpected bytes after its last chunk";
        chunks.clear();
        return false;
    }
    return true;
}

bool WriteStateFile(const std::string& path, const std::vector<SStateChunk>& chunks, std::string& error)
{
    const std::vector<uint8_t> bytes = SerializeState(chunks);
    // A FIFO would block the open, a device swallow the state.
    if (!Morvane::IsWritableTarget(path)) {
        error = "cannot write the state file: " + path + " is not a regular file";
        return false;
    }
    std::ofstream f(path, std::ios::binary | std::ios::trunc);
    if (!f) {
        error = "cannot write state file " + path;
        return false;
    }
    f.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    // Write errors (a full disk) only show once the buffer goes out.
    f.flush();
    f.close();
    if (f.fail()) {
        error = "cannot write state file " + path;
        return false;
    }
    return true;
}

bool ReadStateFile(const std::string& path, std::vector<SStateChunk>& chunks, std::string& error)
{
    std::string bytes;
    if (!Morvane::ReadRegularFile(path, kMaxFileBytes, bytes, error)) {
        error = "cannot read the state file: " + error;
        return false;
    }
    if (!ParseState(reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size(), chunks, error)) {
        error = path + ": " + error;
        return false;
    }
    return true;
}

bool SaveEffectState(AAX_IACFEffectParameters& effect, std::vector<SStateChunk>& chunks, std::string& error)
{
    chunks.clear();
    int32_t count = 0;
    AAX_Result r = effect.GetNumberOfChunks(&count);
    if (r != AAX_SUCCESS || count < 0 || static_cast<uint32_t>(count) > kStateMaxChunks) {
        error = "GetNumberOfChunks failed (" + ResultText(r) + ", count " + std::to_string(count) + ")";
        return false;
    }
    for (int32_t i = 0; i < count; ++i) {
        AAX_CTypeID id = 0;
        r = effect.GetChunkIDFromIndex(i, &id);
        if (r != AAX_SUCCESS) {
            error = "GetChunkIDFromIndex(" + std::to_string(i) + ") failed with " + ResultText(r);
            return false;
        }
        uint32_t size = 0;
        r = effect.GetChunkSize(id, &size);
        if (r != AAX_SUCCESS || size > static_cast<uint32_t>(INT32_MAX)) {
            error = "GetChunkSize(" + ChunkText(id) + ") failed with " + ResultText(r);
            return false;
        }
        SChunkBuffer buffer(size);
        AAX_SPlugInChunk* chunk = buffer.Chunk();
        chunk->fSize = static_cast<int32_t>(size);
        chunk->fChunkID = id;
        r = effect.GetChunk(id, chunk);
        if (r != AAX_SUCCESS) {
            error = "GetChunk(" + ChunkText(id) + ") failed with " + ResultText(r);
            return false;
        }
        if (chunk->fSize < 0 || static_cast<uint32_t>(chunk->fSize) > size) {
            error = "GetChunk(" + ChunkText(id) + ") reported " + std::to_string(chunk->fSize) +
                    " bytes, more than the " + std::to_string(size) + " announced by GetChunkSize";
            return false;
        }
        SStateChunk c;
        c.id = id;
        c.version = chunk->fVersion;
        std::memcpy(c.name, chunk->fName, sizeof c.name);
        c.data.assign(chunk->fData, chunk->fData + chunk->fSize);
        chunks.push_back(std::move(c));
    }
    return true;
}

bool LoadEffectState(AAX_IACFEffectParameters& effect, const std::vector<SStateChunk>& chunks, std::string& error)
{
    for (const auto& c : chunks) {
        SChunkBuffer buffer(c.data.size());
        AAX_SPlugInChunk* chunk = buffer.Chunk();
        chunk->fSize = static_cast<int32_t>(c.data.size());
        chunk->fVersion = c.version;
        chunk->fChunkID = c.id;
        std::memcpy(chunk->fName, c.name, sizeof c.name);
        if (!c.data.empty())
            std::memcpy(chunk->fData, c.data.data(), c.data.size());
        const AAX_Result r = effect.SetChunk(c.id, chunk);
        if (r != AAX_SUCCESS) {
            error = "SetChunk(" + ChunkText(c.id) + ") failed with " + ResultText(r);
            return false;
        }
    }
    return true;
}

}  // namespace AAXHost
