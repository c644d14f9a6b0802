#include "AAX_CString.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>

AAX_CString::AAX_CString(const char* str) : mString(str != nullptr ? str : "") {}

AAX_CString::AAX_CString(const std::string& str) : mString(str) {}

AAX_CString::AAX_CString(const AAX_IString& other) : mString(other.Get() != nullptr ? other.Get() : "") {}

void AAX_CString::Set(const char* iString) { mString = iString != nullptr ? iString : ""; }

AAX_IString& AAX_CString::operator=(const AAX_IString& iOther)
{
    if (&iOther != this) Set(iOther.Get());
    return *this;
}

AAX_IString& AAX_CString::operator=(const char* iString)
{
    Set(iString);
    return *this;
}

AAX_CString& AAX_CString::operator=(const AAX_CString& other)
{
    mString = other.mString;
    return *this;
}

AAX_CString& AAX_CString::operator=(AAX_CString&& other) noexcept
{
    mString = std::move(other.mString);
    return *this;
}

AAX_CString& AAX_CString::operator=(const std::string& other)
{
    mString = other;
    return *this;
}

AAX_CString& AAX_CString::Erase(uint32_t pos, uint32_t length)
{
    if (pos < mString.size()) mString.erase(pos, length);
    return *this;
}

AAX_CString& AAX_CString::Append(const AAX_CString& other)
{
    mString += other.mString;
    return *this;
}

AAX_CString& AAX_CString::Append(const char* other)
{
    if (other != nullptr) mString += other;
    return *this;
}

namespace {
std::string FormatNumber(double number, int32_t precision)
{
    if (precision < 0) precision = 0;
    if (precision > 17) precision = 17;
    char buffer[400];  // enough for any double in fixed notation
    const int n = std::snprintf(buffer, sizeof(buffer), "%.*f", static_cast<int>(precision), number);
    if (n < 0) return std::string();
    return std::string(buffer, static_cast<size_t>(n) < sizeof(buffer) ? static_cast<size_t>(n) : sizeof(buffer) - 1);
}
}  // namespace

AAX_CString& AAX_CString::AppendNumber(double number, int32_t precision)
{
    mString += FormatNumber(number, precision);
    return *this;
}

AAX_CString& AAX_CString::AppendNumber(int32_t number)
{
    mString += std::to_string(number);
    return *this;
}

AAX_CString& AAX_CString::InsertNumber(uint32_t pos, double number, int32_t precision)
{
    if (pos > mString.size()) pos = static_cast<uint32_t>(mString.size());
    mString.insert(pos, FormatNumber(number, precision));
    return *this;
}

AAX_CString AAX_CString::SubString(uint32_t pos, uint32_t length) const
{
    if (pos >= mString.size()) return AAX_CString();
    return AAX_CString(mString.substr(pos, length));
}

uint32_t AAX_CString::FindFirst(const char* what) const
{
    if (what == nullptr) return Length();
    const size_t at = mString.find(what);
    return at == std::string::npos ? Length() : static_cast<uint32_t>(at);
}

bool AAX_CString::Equals(const char* other) const { return other != nullptr && mString == other; }

bool AAX_CString::ToDouble(double* oValue) const
{
    if (oValue == nullptr) return false;
    const char* begin = mString.c_str();
    char* end = nullptr;
    errno = 0;
    const double value = std::strtod(begin, &end);
    // A unit or other text after the number is tolerated, as a user would
    // type "3.5 dB"; no number at all, or NaN/overflow, is a failure.
    if (end == begin || errno == ERANGE || std::isnan(value)) {
        *oValue = 0.0;
        return false;
    }
    *oValue = value;
    return true;
}

bool AAX_CString::ToInteger(int32_t* oValue) const
{
    if (oValue == nullptr) return false;
    const char* begin = mString.c_str();
    char* end = nullptr;
    errno = 0;
    const long value = std::strtol(begin, &end, 10);
    if (end == begin || errno == ERANGE || value < INT32_MIN || value > INT32_MAX) {
        *oValue = 0;
        return false;
    }
    *oValue = static_cast<int32_t>(value);
    return true;
}
