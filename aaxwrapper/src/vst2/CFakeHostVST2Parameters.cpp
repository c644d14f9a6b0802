// The VST 2 effect's parameters: description, present values and host changes.
#include "logger/CLog.h"
#include "vst2/CFakeHostVST2.h"

int CFakeHostVST2::DoGetParameterCount()
{
    return effect != nullptr ? effect->numParams : -1;
}

SParameterInfo CFakeHostVST2::DoGetParameterInfo(int index)
{
    SParameterInfo info;
    if (effect == nullptr)
        return info;
    MV_COND_ASSERT("fakehost", 0 <= index && index < effect->numParams, "0<=inID && inID<GetParameterCount()",
                   "Bad access to parameters info", " inID = ", index, " GetParameterCount() = ", effect->numParams);
    char name[kTextBufferSize + 1] = {};
    Dispatch(effGetParamName, index, 0, name);
    info.valid = true;
    info.tag = static_cast<uint32_t>(index);
    info.name = name;
    // VST 2 has no defaults: the value the effect holds now stands for one.
    info.defaultIsPresentValue = true;
    if (effect->getParameter != nullptr)
        info.defaultValue = static_cast<double>(effect->getParameter(effect, index));
    return info;
}

std::optional<double> CFakeHostVST2::DoGetParameterValue(int index)
{
    if (effect == nullptr || effect->getParameter == nullptr || index < 0 || index >= effect->numParams)
        return std::nullopt;
    return static_cast<double>(effect->getParameter(effect, index));
}

void CFakeHostVST2::DoAddInputChangeForProcessing(int index, double value)
{
    MV_LOG("process", kLogDebug, "VST2> AddInputChangeForProcessing... ", index, " ", value);
    if (effect == nullptr || effect->setParameter == nullptr)
        return;
    effect->setParameter(effect, index, static_cast<float>(value));
}

// The effect has one value per parameter, set by the call above.
void CFakeHostVST2::DoAddInputChangeForGUI(int, double) {}
