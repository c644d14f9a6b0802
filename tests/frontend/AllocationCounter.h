// Counts global operator new calls, so a test can prove a code path is
// allocation-free (the real-time rule) without timing anything.
#pragma once

#include <cstddef>

namespace FrontendTest {
std::size_t AllocationCount();
}
