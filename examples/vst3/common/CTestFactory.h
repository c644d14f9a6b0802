// A plug-in factory for our test bundles: a fixed table of classes, each
// with the function that creates it.
#pragma once

#include <vector>

#include "pluginterfaces/base/ipluginbase.h"

namespace MrvTest {

using CreateFunction = Steinberg::FUnknown* (*)();

struct ClassEntry {
    Steinberg::FUID cid;
    const char* category;
    const char* name;
    const char* subCategories;
    CreateFunction create;
};

class CTestFactory : public Steinberg::IPluginFactory2 {
public:
    // With componentOnly, an "Audio Module Class" is created only as the
    // IComponent (or FUnknown) the VST 3 documentation tells hosts to ask
    // for, as strict factories do.
    CTestFactory(const char* vendor, std::vector<ClassEntry> classes, bool componentOnly = false);
    virtual ~CTestFactory() = default;

    Steinberg::tresult PLUGIN_API getFactoryInfo(Steinberg::PFactoryInfo* info) override;
    Steinberg::int32 PLUGIN_API countClasses() override;
    Steinberg::tresult PLUGIN_API getClassInfo(Steinberg::int32 index, Steinberg::PClassInfo* info) override;
    Steinberg::tresult PLUGIN_API getClassInfo2(Steinberg::int32 index, Steinberg::PClassInfo2* info) override;
    Steinberg::tresult PLUGIN_API createInstance(Steinberg::FIDString cid, Steinberg::FIDString iid, void** obj) override;

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef() override;
    Steinberg::uint32 PLUGIN_API release() override;

private:
    const char* mVendor;
    bool mComponentOnly;
    std::vector<ClassEntry> mClasses;
    Steinberg::int32 mRefCount = 1;
};

// Defined by each bundle: its factory, created on the first request.
Steinberg::IPluginFactory* CreateFactory();

}  // namespace MrvTest
