// What `aaxhost validate` was asked for, and what a strictness level means
// in counts.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace AAXHost {

struct SValidateConfig {
    std::string bundle;
    int level = 5;
    bool json = false;
    std::vector<std::string> only;  // check names; empty runs every check of the level
    uint64_t seed = 0;
    double timeout = 30.0;  // seconds a single plug-in call may take
    bool progress = true;
    // "any": every failure fails the run; "wrapper": only failures that are
    // not the wrapped plug-in's own.
    std::string failOn = "any";
};

struct SLevelPlan {
    int loadCycles;          // dlopen .. dlclose rounds
    int instanceCycles;      // create/process/destroy rounds
    int instancesAtOnce;     // alive together, processed in one call
    int randomParameterSets;  // per parameter
    double automationSeconds;
    std::vector<double> rates;
    std::vector<int> buffers;
    double secondsPerSetting;  // audio per rate and buffer size
    int randomBuffers;
    int corruptStates;       // bit-flipped copies
    double threadSeconds;
    int realtimeBuffers;
};

inline SLevelPlan PlanForLevel(int level)
{
    static const int kCycles[] = {1, 2, 5, 10, 20, 50, 100, 200, 500, 1000};
    SLevelPlan p;
    p.loadCycles = kCycles[level - 1];
    p.instanceCycles = 2 * level;
    p.instancesAtOnce = level < 5 ? 4 : level < 10 ? 16 : 64;
    p.randomParameterSets = level;
    p.automationSeconds = 0.1 * level;
    if (level <= 2)
        p.rates = {48000.0};
    else if (level <= 4)
        p.rates = {44100.0, 48000.0, 96000.0};
    else
        p.rates = {44100.0, 48000.0, 88200.0, 96000.0, 192000.0};
    if (level <= 2)
        p.buffers = {64, 512};
    else if (level <= 4)
        p.buffers = {1, 64, 512, 4096};
    else
        p.buffers = {1, 32, 64, 256, 512, 1024, 2048, 4096};
    p.secondsPerSetting = level < 10 ? 0.05 : 0.25;
    p.randomBuffers = 8 * level;
    p.corruptStates = 4 * level;
    p.threadSeconds = level < 5 ? 0.5 : level < 10 ? 1.5 : 10.0;
    p.realtimeBuffers = 100 * level;
    return p;
}

// Allocations and frees a buffer a plug-in may make on the audio thread: any
// below level 5, none at level 10, and between them a little less at each
// level (a voice allocated now and then at a note-on passes level 5, not
// level 8).
inline double RealtimeAllowancePerBuffer(int level)
{
    if (level < 5)
        return 1e9;
    return 0.01 * (10 - level);
}

}  // namespace AAXHost
