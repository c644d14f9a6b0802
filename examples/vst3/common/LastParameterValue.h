// The value a parameter ends a block at, from the host's changes: what our
// test plug-ins that do not ramp take from a block.
#pragma once

#include "pluginterfaces/vst/ivstparameterchanges.h"

namespace MrvTest {

inline bool LastParameterValue(Steinberg::Vst::IParameterChanges* changes, Steinberg::Vst::ParamID id,
                               Steinberg::Vst::ParamValue& value)
{
    bool found = false;
    const Steinberg::int32 count = changes ? changes->getParameterCount() : 0;
    for (Steinberg::int32 i = 0; i < count; ++i) {
        Steinberg::Vst::IParamValueQueue* queue = changes->getParameterData(i);
        Steinberg::int32 offset = 0;
        if (queue && queue->getParameterId() == id && queue->getPointCount() > 0 &&
            queue->getPoint(queue->getPointCount() - 1, offset, value) == Steinberg::kResultOk)
            found = true;
    }
    return found;
}

}  // namespace MrvTest
