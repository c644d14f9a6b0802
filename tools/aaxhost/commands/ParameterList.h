// Lists an effect's parameters as the host sees them, so that users know
// which IDs and values to give to render --set.
#pragma once

#include <nlohmann/json.hpp>
#include <ostream>
#include <string>
#include <vector>

#include "AAX_IEffectParameters.h"
#include "WrapperStatus.h"

namespace AAXHost {

class CPluginSession;

struct SParameterInfo {
    std::string id;
    std::string name;
    double value = 0.0;         // normalised
    double defaultValue = 0.0;  // normalised
    std::string valueText;
    int32_t steps = 0;
    bool discrete = false;  // its values lie on its steps
    bool automatable = false;
    bool isMasterBypass = false;
    std::string defaultText;
    // What a wrapper says beyond AAX (kWrapperParameterNotesBlockID): the
    // plug-in's unit and group; empty elsewhere.
    std::string units;
    std::string group;
    // The text of each value of a discrete parameter of at most
    // kMostChoicesListed values, in order; empty otherwise.
    std::vector<std::string> choices;
};

constexpr int32_t kMostChoicesListed = 64;

// Every parameter of an effect instance, in index order.
bool ReadParameters(AAX_IACFEffectParameters& params, std::vector<SParameterInfo>& out, std::string& error);

// `wrapper` receives what a wrapper bundle says of its plug-in (host mode,
// file); it stays empty for other bundles.
bool ListParameters(CPluginSession& session, const std::string& effectID, std::vector<SParameterInfo>& out,
                    SWrapperStatus& wrapper, std::string& error);
nlohmann::json ParametersToJson(const std::vector<SParameterInfo>& params, const SWrapperStatus& wrapper);
void PrintParameters(std::ostream& out, const std::vector<SParameterInfo>& params, const SWrapperStatus& wrapper);

}  // namespace AAXHost
