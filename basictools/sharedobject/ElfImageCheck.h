// Checks a shared library file before the dynamic loader maps it: a file
// truncated inside its segments makes the loader touch pages past the end of
// the file, and the process dies of SIGBUS inside dlopen.
#pragma once

#include <string>

namespace Morvane {

// True when path is a regular file holding a 64-bit ELF image whose program
// headers and loadable segments all lie within the file; otherwise false
// and a reason. Reads the headers only.
bool CheckElfImage(const std::string& path, std::string& error);

}  // namespace Morvane
