#include "../common/CTestFactory.h"
#include "EffectController.h"
#include "EffectProcessor.h"

namespace MrvTest {

Steinberg::IPluginFactory* CreateFactory()
{
    return new CTestFactory("Morvane Test", {
        {kEffectProcessorUID, "Audio Module Class", "MrvTestEffect", "Fx", &EffectProcessor::create},
        {kEffectControllerUID, "Component Controller Class", "MrvTestEffect Controller", "", &EffectController::create},
    });
}

}  // namespace MrvTest
