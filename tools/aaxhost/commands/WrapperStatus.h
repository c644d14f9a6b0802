// What a wrapper bundle says about the VST plug-in it hosts (its custom data
// block kWrapperStatusBlockID): the host mode, whether the plug-in runs, from
// which file, and why not. Bundles that are no wrapper give no block.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "AAX_IEffectParameters.h"

namespace AAXHost {

// One output bus of the wrapped plug-in and where it plays.
struct SWrappedOutput {
    int32_t bus = 0;
    int32_t channels = 0;
    std::string plays;  // "main", "stem <n>" (OutputStem_<n>) or "dropped"
    std::string name;
};

struct SWrapperStatus {
    bool present = false;  // the effect answered the block
    std::string mode;
    bool loaded = false;
    std::string plugin;
    std::string error;
    std::string vendor;   // as the wrapped plug-in reports them
    std::string version;
    // The master bypass drives the plug-in's own bypass ("bypass=plugin"):
    // a bypassed buffer is what the plug-in makes of it, not the input.
    bool pluginBypasses = false;
    int32_t latency = 0;  // samples, as the effect reported it once initialised (SetSignalLatency)
    // The plug-in's tail: "<samples>", "infinite", or empty when it does not say.
    std::string tail;
    std::vector<SWrappedOutput> outputs;
};

class CPluginSession;

SWrapperStatus ReadWrapperStatus(const AAX_IACFEffectParameters& effect);

// Creates one instance of the session's first effect only to read its status;
// an effect that cannot be instantiated gives an empty status.
SWrapperStatus ProbeWrapperStatus(CPluginSession& session);

// The "wrapper" object of the JSON forms; null for bundles that are no wrapper.
nlohmann::json WrapperStatusToJson(const SWrapperStatus& wrapper);

// The tail as JSON: samples, "infinite", or null when not declared.
nlohmann::json TailToJson(const std::string& tail);

// "the wrapped plug-in could not be loaded: <reason>"
std::string NotLoadedMessage(const SWrapperStatus& status);

}  // namespace AAXHost
