// What the fake-host contract answers, as values: the same record for every
// format, so that the front end never interprets a back end's conventions.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// One parameter as the plug-in describes it.
struct SParameterInfo {
    // False when the plug-in could not describe it (out of range, no answer).
    bool valid = false;
    // The number the AAX identifier is made of: the index, or the plug-in's
    // own parameter ID where the format has stable ones (STANDARD).
    uint32_t tag = 0;
    std::string name;
    // Normalised 0..1. VST 2 has no defaults: its default is the value the
    // plug-in holds when asked (defaultIsPresentValue says so).
    double defaultValue = 0.0;
    bool defaultIsPresentValue = false;
    // Whether it becomes an AAX parameter (hidden ones do not).
    bool published = true;
    // Whether the plug-in lets a host set it (not read-only, not hidden).
    bool automatable = true;
    // Discrete values the plug-in declares less one; 0: continuous.
    int32_t steps = 0;
    // The unit the plug-in gives its texts (may be empty).
    std::string units;
    // STANDARD: the group the plug-in files it under ("Filter / Envelope"
    // for nested ones); empty at the top level.
    std::string group;
    // STANDARD: the plug-in's own bypass switch. The host's master bypass
    // drives it, so it is not published as a parameter of its own.
    bool bypass = false;
    // STANDARD: the plug-in's program choice, named "Program", its texts
    // the program names. Published first, so that a restore chooses the
    // program before the values that follow it.
    bool program = false;
};

// The plug-in's whole state as the wrapper saves it.
struct SPluginState {
    // False when the plug-in gave none; `bytes` is then what is saved anyway.
    bool gave = false;
    std::vector<char> bytes;
};

// How long the plug-in keeps sounding once its input falls silent, as it
// declares it.
struct SPluginTail {
    // False when it does not say (or the host mode never asks).
    bool known = false;
    bool infinite = false;
    uint32_t samples = 0;  // 0 with known: no tail at all
};

// Where one of the plug-in's output buses plays.
struct SOutputRoute {
    int32_t bus = 0;
    std::string name;
    int32_t channels = 0;
    // The stem (0-based) its first channel lands on; kMainOutput for the
    // main pair, kScratchOnly when no stem is left and its output is dropped.
    static constexpr int32_t kMainOutput = -1;
    static constexpr int32_t kScratchOnly = -2;
    int32_t stem = kScratchOnly;
};

// The editor's size in pixels; `known` false when the plug-in gave none.
struct SViewSize {
    bool known = false;
    float width = 0.0f;
    float height = 0.0f;
};
