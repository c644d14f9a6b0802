#include "EffectController.h"

#include <cstdlib>
#include <cstring>

#include "../common/CTrace.h"
#include "pluginterfaces/base/ibstream.h"

namespace MrvTest {

using namespace Steinberg;
using namespace Steinberg::Vst;

FUnknown* EffectController::create() { return static_cast<IEditController*>(new EffectController); }

tresult PLUGIN_API EffectController::initialize(FUnknown* context)
{
    const char* fault = std::getenv("MRV_VST3_FAULT");
    if (fault && std::strcmp(fault, "controllerinit") == 0) {
        Trace("effectctrl.initialize refused");
        return kResultFalse;
    }
    Trace("effectctrl.initialize");
    const tresult result = EditController::initialize(context);
    if (result == kResultOk)
        parameters.addParameter(STR16("Gain"), nullptr, 0, 1.0, ParameterInfo::kCanAutomate, kEffectGain);
    return result;
}

tresult PLUGIN_API EffectController::terminate()
{
    Trace("effectctrl.terminate");
    return EditController::terminate();
}

tresult PLUGIN_API EffectController::setComponentState(IBStream* state)
{
    double gain = 0;
    int32 bytesRead = 0;
    if (!state || state->read(&gain, sizeof(gain), &bytesRead) != kResultOk || bytesRead != sizeof(gain))
        return kResultFalse;
    return setParamNormalized(kEffectGain, gain);
}

}  // namespace MrvTest
