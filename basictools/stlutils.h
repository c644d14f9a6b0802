// Byte-string helpers shared by path resolution, the log configuration
// parser and the fake hosts' parameter texts. Defined inline here because both the log library
// and basictools use them, and the log library must not depend back on
// basictools.
#pragma once

#include <string>
#include <vector>

namespace Morvane {
namespace stlutils {

// Splits `text` at any character of `delimiters`. A run of delimiters is one
// separator, so no empty token is ever appended. `tokens` is appended to,
// never cleared.
inline void tokenize(const std::string& text, std::vector<std::string>& tokens,
                     const std::string& delimiters)
{
    std::string::size_type start = text.find_first_not_of(delimiters, 0);
    std::string::size_type end = text.find_first_of(delimiters, start);
    while (start != std::string::npos || end != std::string::npos) {
        tokens.push_back(text.substr(start, end - start));
        start = text.find_first_not_of(delimiters, end);
        end = text.find_first_of(delimiters, start);
    }
}

// Replaces every occurrence of `from` by `to`. The scan resumes after the
// inserted text, so a replacement is never rescanned at the same start.
// An empty `from` would match forever: the text comes back unchanged.
inline std::string replace_all(const std::string& text, const std::string& from,
                               const std::string& to)
{
    std::string result = text;
    if (from.empty())
        return result;
    std::string::size_type pos = 0;
    while ((pos = result.find(from, pos)) != std::string::npos) {
        result.replace(pos, from.size(), to);
        pos += to.size();
    }
    return result;
}

// `text` without the spaces and tabs around it (plug-ins pad their texts
// to a column width).
inline std::string trim(std::string text)
{
    const std::string::size_type first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return std::string();
    text.erase(0, first);
    text.erase(text.find_last_not_of(" \t") + 1);
    return text;
}

}  // namespace stlutils
}  // namespace Morvane
