// The three symbols a VST 3 module exports on Linux.
#include <atomic>

#include "CTestFactory.h"
#include "CTrace.h"

#define MRV_EXPORT extern "C" __attribute__((visibility("default")))

namespace {
// Entries and exits are counted, as hosts may open the module several times;
// the factory is given back when the last user leaves, so a host that
// unloads the module leaks nothing.
std::atomic<int> gEntryCount{0};
Steinberg::IPluginFactory* gFactory = nullptr;
}  // namespace

MRV_EXPORT bool ModuleEntry(void*)
{
    MrvTest::Trace("ModuleEntry");
    ++gEntryCount;
    return true;
}

MRV_EXPORT bool ModuleExit()
{
    MrvTest::Trace("ModuleExit");
    if (--gEntryCount <= 0 && gFactory != nullptr) {
        gFactory->release();
        gFactory = nullptr;
    }
    return true;
}

MRV_EXPORT Steinberg::IPluginFactory* GetPluginFactory()
{
    if (gFactory == nullptr)
        gFactory = MrvTest::CreateFactory();
    gFactory->addRef();
    return gFactory;
}
