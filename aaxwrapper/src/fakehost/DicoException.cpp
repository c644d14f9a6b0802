#include "fakehost/IFakeHost.h"

const char* const _DicoException[11] = {
    "Bundle not loaded - File not found.",
    "Bundle not loaded - Entry Proc Failed for path",
    "Bundle Error - Controller Creation failed",
    "Bundle Error - Processor Creation failed",
    "Bundle Error - Component Creation failed",
    "Bundle Error - Component initialization failed",
    "Bundle Error - Audio Effect failed",
    "Host Error - Communication Establishment failed",
    "Host Error - Synchronization failed",
    "Process Error - No Private Data",
    "Process Error - No Wrapper",
};
