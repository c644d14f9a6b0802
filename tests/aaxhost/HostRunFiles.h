// File and shell helpers shared by the suites that run the aaxhost
// executable (aaxhost.*, vst3e2e.*).
#pragma once

#include <string>

namespace AAXHostTest {

// s quoted for /bin/sh, whatever characters it holds.
std::string ShellQuote(const std::string& s);

// The whole file; empty when it cannot be read.
std::string ReadWholeFile(const std::string& path);

// A fresh, empty folder root/<running test>/name (<suite>.<process id> in a
// suite's set-up). Cleared the first time it is asked for, so that tests run
// in parallel (ctest -j) never share or clear each other's files, and what a
// failed test wrote stays to be read.
std::string TestFolder(const std::string& root, const std::string& name);

}  // namespace AAXHostTest
