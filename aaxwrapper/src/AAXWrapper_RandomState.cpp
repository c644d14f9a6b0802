// The VST 3 SDK's static initialisers (FObject's class ID, on Linux) reseed
// the C library's process-wide random generator with a fixed value each time
// this bundle is loaded. A plug-in in the same process then draws the same
// "random" numbers after every load: Debian's ZynAddSubFX picked the same
// network port each time and kept one socket open per load. So while the
// bundle initialises, the generator runs on a table of ours, and the host's
// own table is handed back untouched (its position included) at the first
// entry point the host calls, or when the bundle is unloaded unused.
#include "AAXWrapper_RandomState.h"

#include <atomic>
#include <cstdlib>

namespace {

char gBundleTable[256];
char* gHostTable = nullptr;
std::atomic<bool> gGivenBack{false};

// Priorities run before every ordinary static initialiser of the bundle.
__attribute__((constructor(101))) void BorrowRandomState()
{
    gHostTable = initstate(1, gBundleTable, sizeof gBundleTable);
}

// The generator must never be left on a table that is unmapped with us.
__attribute__((destructor(101))) void GiveBackOnUnload() { AAXWrapper_GiveBackRandomState(); }

}  // namespace

void AAXWrapper_GiveBackRandomState()
{
    if (gHostTable != nullptr && !gGivenBack.exchange(true, std::memory_order_acq_rel))
        setstate(gHostTable);
}
