// Counts every global operator new of the executable that links it (the
// counter replaces operator new), so a test can prove a path allocation-free
// without timing anything. Link `aaxw_test_allocation_counter` only where that
// is wanted.
#pragma once

#include <cstddef>

namespace TestSupport {
std::size_t HeapAllocationCount();
}
