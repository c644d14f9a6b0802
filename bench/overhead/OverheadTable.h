// The figures of every case side by side, and the budgets they are held to
// (printed next to the figures, not asserted).
#pragma once

#include <cstdio>
#include <vector>

#include "OverheadCase.h"

namespace BenchOverhead {

struct SCaseRow {
    SCase which;
    SCaseResult result;
};

// unit: "instructions" or "ns". Returns false when a case failed
// or two outputs differ without a stated reason.
bool PrintOverheadTable(std::FILE* out, const std::vector<SCaseRow>& rows, const char* unit, const char* source);

}  // namespace BenchOverhead
