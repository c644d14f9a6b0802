#include "../common/CTestFactory.h"
#include "SynthController.h"
#include "SynthProcessor.h"

namespace MrvTest {

#ifdef MRV_STRICT
constexpr bool kStrictFactory = true;
#else
constexpr bool kStrictFactory = false;
#endif

Steinberg::IPluginFactory* CreateFactory()
{
    return new CTestFactory("Morvane Test", {
        {kSynthProcessorUID, "Audio Module Class", "MrvTestSynth", "Instrument|Synth", &SynthProcessor::create},
        {kSynthControllerUID, "Component Controller Class", "MrvTestSynth Controller", "", &SynthController::create},
    }, kStrictFactory);
}

}  // namespace MrvTest
