// Owns the effect's parameters, in insertion order (their indices) and by
// identifier, and attaches each one to the host's automation.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "AAX.h"
#include "AAX_IParameter.h"

class AAX_IAutomationDelegate;

class AAX_CParameterManager {
public:
    AAX_CParameterManager() = default;
    AAX_CParameterManager(const AAX_CParameterManager&) = delete;
    AAX_CParameterManager& operator=(const AAX_CParameterManager&) = delete;
    ~AAX_CParameterManager();

    void Initialize(AAX_IAutomationDelegate* iAutomationDelegateUnknown);
    int32_t NumParameters() const { return static_cast<int32_t>(mParameters.size()); }
    // Takes ownership. A duplicate identifier is ignored (the first stays);
    // the refused object is kept aside and freed with the manager, so a
    // caller still holding it never sees it vanish.
    void AddParameter(AAX_IParameter* param);
    void RemoveParameter(AAX_IParameter* param);
    void RemoveParameterByID(AAX_CParamID identifier);
    void RemoveAllParameters();
    AAX_IParameter* GetParameterByID(AAX_CParamID identifier);
    const AAX_IParameter* GetParameterByID(AAX_CParamID identifier) const;
    AAX_IParameter* GetParameter(int32_t index);
    const AAX_IParameter* GetParameter(int32_t index) const;
    int32_t ControlIndexFromID(AAX_CParamID identifier) const;

private:
    AAX_IAutomationDelegate* mAutomationDelegate = nullptr;
    std::vector<AAX_IParameter*> mParameters;
    // Transparent: a lookup by an identifier makes no string of it.
    std::map<std::string, AAX_IParameter*, std::less<>> mParametersMap;
    std::vector<AAX_IParameter*> mRefused;
};
