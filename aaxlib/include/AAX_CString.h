// The library's text type: an owned UTF-8 string usable wherever the host
// expects an AAX_IString.
#pragma once

#include <cstdint>
#include <string>
#include <utility>

#include "AAX_IString.h"

class AAX_CString : public AAX_IString {
public:
    static constexpr uint32_t kMaxStringLength = 32767;

    AAX_CString() = default;
    AAX_CString(const char* str);                 // NOLINT: implicit on purpose, like std::string
    AAX_CString(const std::string& str);          // NOLINT
    // The interface base has no state; copying it explicitly is deprecated.
    AAX_CString(const AAX_CString& other) : AAX_IString(), mString(other.mString) {}
    AAX_CString(AAX_CString&& other) noexcept : AAX_IString(), mString(std::move(other.mString)) {}
    explicit AAX_CString(const AAX_IString& other);
    ~AAX_CString() override = default;

    // AAX_IString
    uint32_t Length() const override { return static_cast<uint32_t>(mString.size()); }
    uint32_t MaxLength() const override { return kMaxStringLength; }
    const char* Get() const override { return mString.c_str(); }
    void Set(const char* iString) override;
    AAX_IString& operator=(const AAX_IString& iOther) override;
    AAX_IString& operator=(const char* iString) override;

    AAX_CString& operator=(const AAX_CString& other);
    AAX_CString& operator=(AAX_CString&& other) noexcept;
    AAX_CString& operator=(const std::string& other);

    const std::string& StdString() const { return mString; }
    std::string& StdString() { return mString; }
    const char* CString() const { return mString.c_str(); }

    void Clear() { mString.clear(); }
    bool Empty() const { return mString.empty(); }
    AAX_CString& Erase(uint32_t pos, uint32_t length);
    AAX_CString& Append(const AAX_CString& other);
    AAX_CString& Append(const char* other);
    AAX_CString& AppendNumber(double number, int32_t precision);
    AAX_CString& AppendNumber(int32_t number);
    AAX_CString& InsertNumber(uint32_t pos, double number, int32_t precision);
    AAX_CString SubString(uint32_t pos, uint32_t length) const;
    uint32_t FindFirst(const char* what) const;  // Length() when absent
    bool Equals(const AAX_CString& other) const { return mString == other.mString; }
    bool Equals(const char* other) const;

    // Parse the leading number of the text; false (and 0) when there is none.
    bool ToDouble(double* oValue) const;
    bool ToInteger(int32_t* oValue) const;

    AAX_CString& operator+=(const AAX_CString& other) { return Append(other); }
    AAX_CString& operator+=(const char* other) { return Append(other); }
    char operator[](uint32_t index) const { return mString[index]; }

    bool operator==(const AAX_CString& other) const { return mString == other.mString; }
    bool operator!=(const AAX_CString& other) const { return mString != other.mString; }
    bool operator<(const AAX_CString& other) const { return mString < other.mString; }
    bool operator==(const char* other) const { return Equals(other); }
    bool operator!=(const char* other) const { return !Equals(other); }

private:
    std::string mString;
};
