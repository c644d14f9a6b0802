// Builds and reads the byte format of the library's parameter chunk: a
// 01 01 01 01 header, then tagged, zero-terminated names each followed by a
// big-endian value, everything aligned to 4 bytes.
#pragma once

#include <cstdint>
#include <string>
#include <unordered_map>
#include <vector>

#include "AAX.h"
#include "AAX_CString.h"

class AAX_CChunkDataParser {
public:
    enum EDataType : int32_t {
        kUnknownType = 0,
        kFloatType = 1,
        kLongType = 2,
        kDoubleType = 3,
        kShortType = 4,
        kStringType = 5,
    };
    struct DataValue {
        int32_t mDataType = kUnknownType;
        AAX_CString mDataName;
        int64_t mIntValue = 0;  // the bits of whichever numeric type mDataType says
        AAX_CString mStringValue;
    };

    static constexpr int32_t kChunkDataStringCopyFailed = -333;
    static constexpr int32_t kNameBufferSize = 255;
    static constexpr int32_t kDefaultChunkVersion = 1;

    AAX_CChunkDataParser() = default;

    void AddFloat(const char* name, float value);
    void AddInt32(const char* name, int32_t value);
    void AddInt16(const char* name, int16_t value);
    void AddDouble(const char* name, double value);
    void AddString(const char* name, const AAX_CString& value);
    bool ReplaceDouble(const char* name, double value);

    bool FindFloat(const char* name, float* value);
    bool FindInt32(const char* name, int32_t* value);
    bool FindInt16(const char* name, int16_t* value);
    bool FindDouble(const char* name, double* value);
    bool FindString(const char* name, AAX_CString* value);
    // Index of the first entry of that name, or -1.
    int32_t FindName(const AAX_CString& name) const;

    // Writes fSize and the data; the record must have room for GetChunkDataSize() bytes.
    int32_t GetChunkData(AAX_SPlugInChunk* chunk) const;
    // Replaces the entries by those read from the chunk; never reads past fSize.
    void LoadChunk(const AAX_SPlugInChunk* chunk);
    int32_t GetChunkDataSize() const;
    int32_t GetChunkVersion() const { return mChunkVersion; }
    void SetChunkVersion(int32_t version) { mChunkVersion = version; }

    void Clear();
    bool IsEmpty() const { return mDataValues.empty(); }
    size_t NumEntries() const { return mDataValues.size(); }
    const DataValue& Entry(size_t index) const { return mDataValues[index]; }

    static int32_t WordAlign(int32_t offset) { return (offset + 3) & ~3; }

private:
    // Every Add* call: only the type and the value's bits or text differ.
    void AddEntry(const char* name, int32_t type, int64_t bits, const AAX_CString& text = AAX_CString());
    void Append(DataValue&& value);
    const DataValue* Lookup(const char* name, int32_t type) const;

    std::vector<DataValue> mDataValues;
    std::unordered_map<std::string, size_t> mFirstIndexByName;
    int32_t mChunkVersion = kDefaultChunkVersion;
};
