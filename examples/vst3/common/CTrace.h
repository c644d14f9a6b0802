// What the host did to a test plug-in, one line per call, appended to the
// file named by MRV_VST3_TRACE (nothing is written without it). Tests read
// the file back to check the order and the values of the calls.
#pragma once

namespace MrvTest {

void Trace(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace MrvTest
