#include "AAX_CChunkDataParser.h"

#include <algorithm>
#include <cstring>

namespace {
constexpr int32_t kHeaderSize = 4;
constexpr unsigned char kHeaderByte = 0x01;

const char* TagOf(int32_t type)
{
    switch (type) {
    case AAX_CChunkDataParser::kFloatType: return "f_";
    case AAX_CChunkDataParser::kLongType: return "l_";
    case AAX_CChunkDataParser::kDoubleType: return "d_";
    case AAX_CChunkDataParser::kShortType: return "s_";
    case AAX_CChunkDataParser::kStringType: return "r_";
    default: return nullptr;
    }
}

int32_t ValueSize(const AAX_CChunkDataParser::DataValue& v)
{
    switch (v.mDataType) {
    case AAX_CChunkDataParser::kDoubleType: return 8;
    case AAX_CChunkDataParser::kStringType:
        return AAX_CChunkDataParser::WordAlign(static_cast<int32_t>(std::strlen(v.mStringValue.Get())) + 1);
    default: return 4;
    }
}

void PutBigEndian(unsigned char* out, uint64_t value, int bytes)
{
    for (int i = bytes - 1; i >= 0; --i) {
        out[i] = static_cast<unsigned char>(value & 0xFF);
        value >>= 8;
    }
}

uint64_t GetBigEndian(const unsigned char* in, int bytes)
{
    uint64_t value = 0;
    for (int i = 0; i < bytes; ++i) value = (value << 8) | in[i];
    return value;
}

const char* SafeName(const char* name) { return name != nullptr ? name : ""; }
}  // namespace

void AAX_CChunkDataParser::Append(DataValue&& value)
{
    mFirstIndexByName.emplace(value.mDataName.StdString(), mDataValues.size());
    mDataValues.push_back(std::move(value));
}

void AAX_CChunkDataParser::AddEntry(const char* name, int32_t type, int64_t bits, const AAX_CString& text)
{
    DataValue v;
    v.mDataType = type;
    v.mDataName = SafeName(name);
    v.mIntValue = bits;
    v.mStringValue = text;
    Append(std::move(v));
}

void AAX_CChunkDataParser::AddFloat(const char* name, float value)
{
    uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    AddEntry(name, kFloatType, bits);  // zero-extended: the float's own 32 bits
}

void AAX_CChunkDataParser::AddInt32(const char* name, int32_t value) { AddEntry(name, kLongType, value); }

void AAX_CChunkDataParser::AddInt16(const char* name, int16_t value) { AddEntry(name, kShortType, value); }

void AAX_CChunkDataParser::AddDouble(const char* name, double value)
{
    int64_t bits = 0;
    std::memcpy(&bits, &value, sizeof(value));
    AddEntry(name, kDoubleType, bits);
}

void AAX_CChunkDataParser::AddString(const char* name, const AAX_CString& value)
{
    AddEntry(name, kStringType, 0, value);
}

bool AAX_CChunkDataParser::ReplaceDouble(const char* name, double value)
{
    const int32_t index = FindName(AAX_CString(SafeName(name)));
    if (index < 0 || mDataValues[static_cast<size_t>(index)].mDataType != kDoubleType) return false;
    std::memcpy(&mDataValues[static_cast<size_t>(index)].mIntValue, &value, sizeof(value));
    return true;
}

int32_t AAX_CChunkDataParser::FindName(const AAX_CString& name) const
{
    auto it = mFirstIndexByName.find(name.StdString());
    return it == mFirstIndexByName.end() ? -1 : static_cast<int32_t>(it->second);
}

const AAX_CChunkDataParser::DataValue* AAX_CChunkDataParser::Lookup(const char* name, int32_t type) const
{
    if (name == nullptr) return nullptr;
    const int32_t index = FindName(AAX_CString(name));
    if (index < 0) return nullptr;
    const DataValue& v = mDataValues[static_cast<size_t>(index)];
    return v.mDataType == type ? &v : nullptr;
}

bool AAX_CChunkDataParser::FindFloat(const char* name, float* value)
{
    const DataValue* v = Lookup(name, kFloatType);
    if (v == nullptr || value == nullptr) return false;
    const uint32_t bits = static_cast<uint32_t>(v->mIntValue);
    std::memcpy(value, &bits, sizeof(bits));
    return true;
}

bool AAX_CChunkDataParser::FindInt32(const char* name, int32_t* value)
{
    const DataValue* v = Lookup(name, kLongType);
    if (v == nullptr || value == nullptr) return false;
    *value = static_cast<int32_t>(v->mIntValue);
    return true;
}

bool AAX_CChunkDataParser::FindInt16(const char* name, int16_t* value)
{
    const DataValue* v = Lookup(name, kShortType);
    if (v == nullptr || value == nullptr) return false;
    *value = static_cast<int16_t>(v->mIntValue);
    return true;
}

bool AAX_CChunkDataParser::FindDouble(const char* name, double* value)
{
    const DataValue* v = Lookup(name, kDoubleType);
    if (v == nullptr || value == nullptr) return false;
    std::memcpy(value, &v->mIntValue, sizeof(double));
    return true;
}

bool AAX_CChunkDataParser::FindString(const char* name, AAX_CString* value)
{
    const DataValue* v = Lookup(name, kStringType);
    if (v == nullptr || value == nullptr) return false;
    *value = v->mStringValue;
    return true;
}

int32_t AAX_CChunkDataParser::GetChunkDataSize() const
{
    int32_t size = kHeaderSize;
    for (const DataValue& v : mDataValues) {
        if (TagOf(v.mDataType) == nullptr) continue;  // read-back artefacts are not written
        size += WordAlign(2 + static_cast<int32_t>(std::strlen(v.mDataName.Get())) + 1);
        size += ValueSize(v);
    }
    return size;
}

int32_t AAX_CChunkDataParser::GetChunkData(AAX_SPlugInChunk* chunk) const
{
    if (chunk == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    const int32_t size = GetChunkDataSize();
    chunk->fSize = size;
    auto* data = reinterpret_cast<unsigned char*>(chunk->fData);
    std::memset(data, 0, static_cast<size_t>(size));
    std::memset(data, kHeaderByte, kHeaderSize);

    int32_t offset = kHeaderSize;
    for (const DataValue& v : mDataValues) {
        const char* tag = TagOf(v.mDataType);
        if (tag == nullptr) continue;
        const size_t nameLength = std::strlen(v.mDataName.Get());
        std::memcpy(data + offset, tag, 2);
        std::memcpy(data + offset + 2, v.mDataName.Get(), nameLength);
        offset = WordAlign(offset + 2 + static_cast<int32_t>(nameLength) + 1);
        switch (v.mDataType) {
        case kFloatType:
        case kLongType: PutBigEndian(data + offset, static_cast<uint32_t>(v.mIntValue), 4); break;
        case kShortType: PutBigEndian(data + offset, static_cast<uint16_t>(v.mIntValue), 2); break;
        case kDoubleType: PutBigEndian(data + offset, static_cast<uint64_t>(v.mIntValue), 8); break;
        case kStringType: {
            const size_t textLength = std::strlen(v.mStringValue.Get());
            if (offset + static_cast<int32_t>(textLength) + 1 > size) return kChunkDataStringCopyFailed;
            std::memcpy(data + offset, v.mStringValue.Get(), textLength);
            break;
        }
        default: break;
        }
        offset += ValueSize(v);
    }
    return AAX_SUCCESS;
}

void AAX_CChunkDataParser::LoadChunk(const AAX_SPlugInChunk* chunk)
{
    Clear();
    if (chunk == nullptr) return;
    mChunkVersion = chunk->fVersion;

    const int64_t size = chunk->fSize;
    const auto* data = reinterpret_cast<const unsigned char*>(chunk->fData);
    if (size < 5) return;
    for (int i = 0; i < kHeaderSize; ++i)
        if (data[i] != kHeaderByte) return;

    int64_t offset = kHeaderSize;
    while (offset < size) {
        // The tagged name, bounded by the name buffer and by the chunk.
        const int64_t copyLimit = std::min<int64_t>(kNameBufferSize, size - offset);
        const char* nameStart = reinterpret_cast<const char*>(data + offset);
        const size_t nameLength = strnlen(nameStart, static_cast<size_t>(copyLimit));
        offset = WordAlign(static_cast<int32_t>(std::min<int64_t>(offset + static_cast<int64_t>(nameLength) + 1, INT32_MAX - 3)));

        DataValue v;
        if (nameLength > 2) v.mDataName = std::string(nameStart + 2, nameLength - 2);
        const char tag = nameLength > 0 ? nameStart[0] : '\0';
        const int64_t remaining = size - offset;
        switch (tag) {
        case 'f':
        case 'l':
            if (remaining < 4) return;  // truncated value: keep what was read so far
            v.mDataType = tag == 'f' ? kFloatType : kLongType;
            v.mIntValue = tag == 'f' ? static_cast<int64_t>(GetBigEndian(data + offset, 4))
                                     : static_cast<int32_t>(GetBigEndian(data + offset, 4));
            offset += 4;
            break;
        case 'd':
            if (remaining < 8) return;
            v.mDataType = kDoubleType;
            v.mIntValue = static_cast<int64_t>(GetBigEndian(data + offset, 8));
            offset += 8;
            break;
        case 's':
            if (remaining < 2) return;
            v.mDataType = kShortType;
            v.mIntValue = static_cast<int16_t>(GetBigEndian(data + offset, 2));
            offset += 4;
            break;
        case 'r': {
            if (remaining <= 0) return;
            const char* text = reinterpret_cast<const char*>(data + offset);
            const size_t textLength = strnlen(text, static_cast<size_t>(remaining));
            if (static_cast<int64_t>(textLength) == remaining) return;  // no terminator inside the chunk
            v.mDataType = kStringType;
            v.mStringValue = std::string(text, textLength);
            // Deliberately not realigned: the next pass reads the padding as
            // an empty, untyped entry, as chunks in the field expect.
            offset += static_cast<int64_t>(textLength) + 1;
            break;
        }
        default: break;
        }
        Append(std::move(v));
    }
}

void AAX_CChunkDataParser::Clear()
{
    mDataValues.clear();
    mFirstIndexByName.clear();
}
