#include "../common/CTestFactory.h"
#include "DeclaringPlugin.h"

namespace MrvTest {

Steinberg::IPluginFactory* CreateFactory()
{
    if (kInstrumentShape)
        return new CTestFactory("Morvane Test", {{kDeclaringInstrumentUID, "Audio Module Class", "MrvTestOutputs",
                                                  "Instrument|Synth", &DeclaringPlugin::create}});
    return new CTestFactory("Morvane Test",
                            {{kDeclaringEffectUID, "Audio Module Class", "MrvTestLatency", "Fx", &DeclaringPlugin::create}});
}

}  // namespace MrvTest
