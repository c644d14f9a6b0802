#include "PluginDescription.h"

namespace AAXHost {

void* SEffectInfo::ProcPtr(int32_t id) const
{
    for (const auto& p : procPtrs)
        if (p.first == id)
            return p.second;
    return nullptr;
}

const SComponentInfo* FindProcessingComponent(const SEffectInfo& effect)
{
    for (const auto& c : effect.components)
        if (!c.processProcs.empty() && c.processProcs.front().proc)
            return &c;
    return nullptr;
}

}  // namespace AAXHost
