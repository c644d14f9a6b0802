// Proves the allocation counter is live in this test program before a test
// relies on it reading zero: without its hooks linked, every count is zero.
#pragma once

#include <cstdlib>

#include <gtest/gtest.h>

#include "AllocationCount.h"

namespace TestSupport {

inline void ExpectAllocationCounting()
{
    AAXHost::CAllocationScope probe;
    void* volatile block = std::malloc(16);  // volatile: the pair cannot be optimised away
    std::free(block);
    EXPECT_EQ(probe.Allocations(), 1u) << "the allocation hooks are not linked into this program";
}

}  // namespace TestSupport
