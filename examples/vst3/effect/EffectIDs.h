// Identifiers of the test effects (no event bus).
#pragma once

#include "pluginterfaces/base/funknown.h"
#include "pluginterfaces/vst/vsttypes.h"

namespace MrvTest {

constexpr Steinberg::Vst::ParamID kEffectGain = 0;

static const Steinberg::FUID kEffectProcessorUID(0x4D72764E, 0x45666650, 0x726F6331, 0x00000003);
static const Steinberg::FUID kEffectControllerUID(0x4D72764E, 0x45666643, 0x74726C31, 0x00000004);
static const Steinberg::FUID kSingleEffectUID(0x4D72764E, 0x53676C45, 0x66663131, 0x00000005);
static const Steinberg::FUID kSplitEffectUID(0x4D72764E, 0x53706C74, 0x45666631, 0x00000006);

}  // namespace MrvTest
