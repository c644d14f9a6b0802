#include "SingleEffect.h"

#include "../common/CTrace.h"
#include "pluginterfaces/base/ibstream.h"
#include "pluginterfaces/base/ustring.h"

#include <cstdio>

namespace MrvTest {

using namespace Steinberg;
using namespace Steinberg::Vst;

FUnknown* SingleEffect::create() { return static_cast<IAudioProcessor*>(new SingleEffect); }

tresult PLUGIN_API SingleEffect::initialize(FUnknown* context)
{
    Trace("single.initialize");
    return EffectProcessor::initialize(context);
}

tresult PLUGIN_API SingleEffect::terminate()
{
    Trace("single.terminate");
    return EffectProcessor::terminate();
}

tresult PLUGIN_API SingleEffect::connect(IConnectionPoint* other)
{
    Trace("single.connect");
    return EffectProcessor::connect(other);
}

tresult PLUGIN_API SingleEffect::setComponentState(IBStream* state)
{
    double gain = 0;
    int32 bytesRead = 0;
    if (!state || state->read(&gain, sizeof(gain), &bytesRead) != kResultOk || bytesRead != sizeof(gain))
        return kResultFalse;
    mControllerGain = gain;
    Trace("single.setComponentState gain=%.6f", gain);
    return kResultOk;
}

tresult PLUGIN_API SingleEffect::getParameterInfo(int32 paramIndex, ParameterInfo& info)
{
    if (paramIndex != 0)
        return kInvalidArgument;
    info = ParameterInfo();
    info.id = kEffectGain;
    UString(info.title, 128).fromAscii("Gain");
    info.defaultNormalizedValue = 1.0;
    info.flags = ParameterInfo::kCanAutomate;
    return kResultOk;
}

tresult PLUGIN_API SingleEffect::getParamStringByValue(ParamID, ParamValue valueNormalized, String128 string)
{
    char text[32];
    std::snprintf(text, sizeof(text), "%.2f", valueNormalized);
    UString(string, 128).fromAscii(text);
    return kResultOk;
}

tresult PLUGIN_API SingleEffect::getParamValueByString(ParamID, TChar*, ParamValue&) { return kResultFalse; }

ParamValue PLUGIN_API SingleEffect::getParamNormalized(ParamID id) { return id == kEffectGain ? mControllerGain : 0.0; }

tresult PLUGIN_API SingleEffect::setParamNormalized(ParamID id, ParamValue value)
{
    if (id != kEffectGain)
        return kInvalidArgument;
    mControllerGain = value;
    return kResultOk;
}

tresult PLUGIN_API SingleEffect::setComponentHandler(IComponentHandler* handler)
{
    Trace("single.setComponentHandler %s", handler ? "set" : "null");
    return kResultOk;
}

}  // namespace MrvTest
