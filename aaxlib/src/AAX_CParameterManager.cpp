#include "AAX_CParameterManager.h"

#include <algorithm>
#include <cstring>

AAX_CParameterManager::~AAX_CParameterManager()
{
    RemoveAllParameters();
    for (AAX_IParameter* p : mRefused) delete p;
}

void AAX_CParameterManager::Initialize(AAX_IAutomationDelegate* iAutomationDelegateUnknown)
{
    mAutomationDelegate = iAutomationDelegateUnknown;
}

void AAX_CParameterManager::AddParameter(AAX_IParameter* param)
{
    if (param == nullptr) return;
    const std::string id = param->Identifier() != nullptr ? param->Identifier() : "";
    if (mParametersMap.count(id) != 0) {
        if (std::find(mRefused.begin(), mRefused.end(), param) == mRefused.end() &&
            std::find(mParameters.begin(), mParameters.end(), param) == mParameters.end())
            mRefused.push_back(param);
        return;
    }
    param->SetAutomationDelegate(mAutomationDelegate);
    mParameters.push_back(param);
    mParametersMap.emplace(id, param);
}

void AAX_CParameterManager::RemoveParameter(AAX_IParameter* param)
{
    if (param == nullptr) return;
    auto it = std::find(mParameters.begin(), mParameters.end(), param);
    if (it == mParameters.end()) return;
    mParameters.erase(it);
    mParametersMap.erase(param->Identifier());
    param->SetAutomationDelegate(nullptr);
    delete param;
}

void AAX_CParameterManager::RemoveParameterByID(AAX_CParamID identifier)
{
    RemoveParameter(GetParameterByID(identifier));
}

void AAX_CParameterManager::RemoveAllParameters()
{
    for (AAX_IParameter* p : mParameters) {
        p->SetAutomationDelegate(nullptr);
        delete p;
    }
    mParameters.clear();
    mParametersMap.clear();
}

AAX_IParameter* AAX_CParameterManager::GetParameterByID(AAX_CParamID identifier)
{
    if (identifier == nullptr) return nullptr;
    auto it = mParametersMap.find(std::string_view(identifier));
    return it == mParametersMap.end() ? nullptr : it->second;
}

const AAX_IParameter* AAX_CParameterManager::GetParameterByID(AAX_CParamID identifier) const
{
    return const_cast<AAX_CParameterManager*>(this)->GetParameterByID(identifier);
}

AAX_IParameter* AAX_CParameterManager::GetParameter(int32_t index)
{
    if (index < 0 || index >= NumParameters()) return nullptr;
    return mParameters[static_cast<size_t>(index)];
}

const AAX_IParameter* AAX_CParameterManager::GetParameter(int32_t index) const
{
    return const_cast<AAX_CParameterManager*>(this)->GetParameter(index);
}

int32_t AAX_CParameterManager::ControlIndexFromID(AAX_CParamID identifier) const
{
    if (identifier == nullptr || mParameters.empty()) return -1;
    for (size_t i = 0; i < mParameters.size(); ++i)
        if (std::strcmp(mParameters[i]->Identifier(), identifier) == 0) return static_cast<int32_t>(i);
    return -1;
}
