// The maker's exception type. Thrown inside the plug-in only; never across
// the AAX or VST interfaces.
#pragma once

#include <stdexcept>
#include <string>

namespace Morvane {

class CException : public std::runtime_error {
public:
    explicit CException(const std::string& what) : std::runtime_error(what) {}
};

}  // namespace Morvane
