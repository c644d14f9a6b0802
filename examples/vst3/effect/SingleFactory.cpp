#include "../common/CTestFactory.h"
#include "SingleEffect.h"

namespace MrvTest {

#ifdef MRV_STRICT
constexpr bool kStrictFactory = true;
#else
constexpr bool kStrictFactory = false;
#endif

Steinberg::IPluginFactory* CreateFactory()
{
    return new CTestFactory("Morvane Test", {
        {kSingleEffectUID, "Audio Module Class", "MrvTestSingle", "Fx", &SingleEffect::create},
    }, kStrictFactory);
}

}  // namespace MrvTest
