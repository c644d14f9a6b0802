// Stands in for the AAX effect that owns a fake host: keeps the automation
// gestures (touch, set, release) the fake host asks of it.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "AAX_CEffectParameters.h"

namespace TestSupport {

class CTestOwner : public AAX_CEffectParameters {
public:
    AAX_Result TouchParameter(AAX_CParamID id) override;
    AAX_Result SetParameterNormalizedValue(AAX_CParamID id, double value) override;
    AAX_Result ReleaseParameter(AAX_CParamID id) override;

    // Every gesture in order: "touch <id>", "set <id> <value>", "release <id>".
    std::vector<std::string> mCalls;
    // The set requests alone, values exactly as asked.
    std::vector<std::pair<std::string, double>> mSetValues;
};

}  // namespace TestSupport
