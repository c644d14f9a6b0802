// A factory without any "Audio Module Class" entry: the processor is listed
// last under another category.
#include "../common/CTestFactory.h"
#include "EffectController.h"
#include "EffectProcessor.h"

namespace MrvTest {

Steinberg::IPluginFactory* CreateFactory()
{
    return new CTestFactory("Morvane Test", {
        {kEffectControllerUID, "Component Controller Class", "MrvTestEffect Controller", "", &EffectController::create},
        {kEffectProcessorUID, "Test Only Class", "MrvTestNoAudioClass", "Fx", &EffectProcessor::create},
    });
}

}  // namespace MrvTest
