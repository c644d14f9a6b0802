// The three symbols a VST 3 module exports on Linux.
#include "CTestFactory.h"
#include "CTrace.h"

#define MRV_EXPORT extern "C" __attribute__((visibility("default")))

MRV_EXPORT bool ModuleEntry(void*)
{
    MrvTest::Trace("ModuleEntry");
    return true;
}

MRV_EXPORT bool ModuleExit()
{
    MrvTest::Trace("ModuleExit");
    return true;
}

MRV_EXPORT Steinberg::IPluginFactory* GetPluginFactory()
{
    static Steinberg::IPluginFactory* factory = MrvTest::CreateFactory();
    factory->addRef();
    return factory;
}
