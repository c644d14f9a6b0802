#include "../common/CTestFactory.h"
#include "SynthController.h"
#include "SynthProcessor.h"

namespace MrvTest {

Steinberg::IPluginFactory* CreateFactory()
{
    return new CTestFactory("Morvane Test", {
        {kSynthProcessorUID, "Audio Module Class", "MrvTestSynth", "Instrument|Synth", &SynthProcessor::create},
        {kSynthControllerUID, "Component Controller Class", "MrvTestSynth Controller", "", &SynthController::create},
    });
}

}  // namespace MrvTest
