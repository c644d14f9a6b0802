// Text between the plug-in's UTF-16 strings (titles, units, bus and value
// texts) and the AAX side's UTF-8.
#pragma once

#include <cstddef>
#include <string>

#include "pluginterfaces/vst/vsttypes.h"

// False on a broken surrogate pair; reads at most maxLength units.
bool utf16ToUtf8(const Steinberg::char16* text, size_t maxLength, std::string& out);
// Into a String128; false when the text does not fit or is not UTF-8.
bool utf8ToUtf16(const std::string& text, Steinberg::Vst::String128 out);
