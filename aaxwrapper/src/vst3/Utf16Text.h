// UTF-16 texts of the VST 3 interfaces (titles, units, program names) to
// and from the UTF-8 the AAX side uses.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

#include "pluginterfaces/vst/vsttypes.h"

namespace Morvane::vst3 {

using Steinberg::char16;
using Steinberg::Vst::String128;

// Parameter titles are UTF-16; AAX names are UTF-8. False on a broken
// surrogate pair.
inline bool utf16ToUtf8(const char16* text, size_t maxLength, std::string& out)
{
    out.clear();
    for (size_t i = 0; i < maxLength && text[i] != 0; ++i) {
        uint32_t c = static_cast<uint16_t>(text[i]);
        if (c >= 0xD800 && c <= 0xDBFF) {
            if (i + 1 >= maxLength)
                return false;
            const uint32_t low = static_cast<uint16_t>(text[i + 1]);
            if (low < 0xDC00 || low > 0xDFFF)
                return false;
            c = 0x10000 + ((c - 0xD800) << 10) + (low - 0xDC00);
            ++i;
        } else if (c >= 0xDC00 && c <= 0xDFFF) {
            return false;
        }
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return true;
}

// The other way, into a String128; false when the text does not fit or is
// not UTF-8.
inline bool utf8ToUtf16(const std::string& text, String128 out)
{
    constexpr size_t kRoom = 128;
    size_t n = 0;
    for (size_t i = 0; i < text.size();) {
        const auto byte = static_cast<unsigned char>(text[i]);
        uint32_t c = 0;
        size_t length = 0;
        if (byte < 0x80) {
            c = byte;
            length = 1;
        } else if ((byte & 0xE0) == 0xC0) {
            c = byte & 0x1Fu;
            length = 2;
        } else if ((byte & 0xF0) == 0xE0) {
            c = byte & 0x0Fu;
            length = 3;
        } else if ((byte & 0xF8) == 0xF0) {
            c = byte & 0x07u;
            length = 4;
        } else {
            return false;
        }
        if (i + length > text.size())
            return false;
        for (size_t k = 1; k < length; ++k) {
            const auto next = static_cast<unsigned char>(text[i + k]);
            if ((next & 0xC0) != 0x80)
                return false;
            c = (c << 6) | (next & 0x3Fu);
        }
        i += length;
        if (c >= 0x10000) {
            if (n + 2 >= kRoom)
                return false;
            c -= 0x10000;
            out[n++] = static_cast<char16>(0xD800 + (c >> 10));
            out[n++] = static_cast<char16>(0xDC00 + (c & 0x3FF));
        } else {
            if (n + 1 >= kRoom)
                return false;
            out[n++] = static_cast<char16>(c);
        }
    }
    out[n] = 0;
    return true;
}

}  // namespace Morvane::vst3
