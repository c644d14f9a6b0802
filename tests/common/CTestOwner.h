// The AAX side of a fake host under test: an effect-parameters object whose
// controller may be a double, and which records the plug-in's own edits.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "AAX_CEffectParameters.h"
#include "fakehost/IPluginEditListener.h"

namespace TestSupport {

class CTestOwner : public AAX_CEffectParameters, public IPluginEditListener {
public:
    void OnPluginBeginEdit(uint32_t) override {}
    void OnPluginEndEdit(uint32_t) override {}
    void OnPluginEdit(uint32_t tag, double value) override { mSetValues.emplace_back(std::to_string(tag), value); }
    // A move to the value the owner already holds is no edit.
    void OnPluginValueMoved(uint32_t tag, double value) override
    {
        double current = 0.0;
        if (GetParameterNormalizedValue(std::to_string(tag).c_str(), &current) == AAX_SUCCESS && current != value)
            OnPluginEdit(tag, value);
    }

    // The plug-in's edits, values exactly as it gave them.
    std::vector<std::pair<std::string, double>> mSetValues;
};

}  // namespace TestSupport
