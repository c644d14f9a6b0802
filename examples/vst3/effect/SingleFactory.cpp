#include "../common/CTestFactory.h"
#include "SingleEffect.h"

namespace MrvTest {

Steinberg::IPluginFactory* CreateFactory()
{
    return new CTestFactory("Morvane Test", {
        {kSingleEffectUID, "Audio Module Class", "MrvTestSingle", "Fx", &SingleEffect::create},
    });
}

}  // namespace MrvTest
