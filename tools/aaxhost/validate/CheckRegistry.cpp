#include "CheckRegistry.h"

namespace AAXHost {

const std::vector<SCheckDefinition>& AllChecks()
{
    static const std::vector<SCheckDefinition> kChecks = {
        {"description", "registration: fields, IDs, bypass, stems, MIDI nodes, the wrapped plug-in", 1, CheckDescription},
        {"load-unload", "dlopen, start-up, registration, shut-down, dlclose, many times", 1, CheckLoadUnload},
        {"instances", "instances created and destroyed, interleaved with processing, many at once", 1, CheckInstances},
        {"parameters", "set/get, text round trips, steps, defaults, automation during processing", 1, CheckParameters},
        {"state", "randomised state restored byte for byte; damaged chunks refused without harm", 1, CheckState},
        {"processing", "every rate and buffer size: no NaN or infinity; bypass passes input through", 1,
         CheckProcessing},
        {"threads", "parameters, view and chunks from a second thread while audio runs", 3, CheckThreads},
        {"realtime", "allocations on the audio thread, by library", 1, CheckRealtime},
    };
    return kChecks;
}

}  // namespace AAXHost
