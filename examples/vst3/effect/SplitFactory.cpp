#include "../common/CTestFactory.h"
#include "EffectController.h"
#include "SplitEffect.h"

namespace MrvTest {

Steinberg::IPluginFactory* CreateFactory()
{
    return new CTestFactory("Morvane Test", {
        {kSplitEffectUID, "Audio Module Class", "MrvStrictSplit", "Fx", &SplitEffect::create},
        {kEffectControllerUID, "Component Controller Class", "MrvStrictSplit Controller", "", &EffectController::create},
    }, true);
}

}  // namespace MrvTest
