#include "CTestFactory.h"

#include <cstdlib>
#include <cstring>

#include "CTrace.h"
#include "pluginterfaces/base/funknown.h"
#include "pluginterfaces/vst/ivstcomponent.h"

namespace MrvTest {

using namespace Steinberg;

namespace {
void copyText(char* dest, const char* src, size_t size)
{
    std::strncpy(dest, src ? src : "", size - 1);
    dest[size - 1] = 0;
}
}  // namespace

CTestFactory::CTestFactory(const char* vendor, std::vector<ClassEntry> classes, bool componentOnly)
    : mVendor(vendor), mComponentOnly(componentOnly), mClasses(std::move(classes))
{
}

tresult PLUGIN_API CTestFactory::getFactoryInfo(PFactoryInfo* info)
{
    if (!info)
        return kInvalidArgument;
    *info = PFactoryInfo();
    copyText(info->vendor, mVendor, PFactoryInfo::kNameSize);
    copyText(info->url, "https://example.invalid/morvane", PFactoryInfo::kURLSize);
    copyText(info->email, "test@example.invalid", PFactoryInfo::kEmailSize);
    info->flags = PFactoryInfo::kUnicode;
    return kResultOk;
}

int32 PLUGIN_API CTestFactory::countClasses() { return static_cast<int32>(mClasses.size()); }

tresult PLUGIN_API CTestFactory::getClassInfo(int32 index, PClassInfo* info)
{
    if (!info || index < 0 || index >= countClasses())
        return kInvalidArgument;
    const ClassEntry& entry = mClasses[static_cast<size_t>(index)];
    *info = PClassInfo();
    entry.cid.toTUID(info->cid);
    info->cardinality = PClassInfo::kManyInstances;
    copyText(info->category, entry.category, PClassInfo::kCategorySize);
    copyText(info->name, entry.name, PClassInfo::kNameSize);
    return kResultOk;
}

tresult PLUGIN_API CTestFactory::getClassInfo2(int32 index, PClassInfo2* info)
{
    if (!info || index < 0 || index >= countClasses())
        return kInvalidArgument;
    const ClassEntry& entry = mClasses[static_cast<size_t>(index)];
    *info = PClassInfo2();
    entry.cid.toTUID(info->cid);
    info->cardinality = PClassInfo::kManyInstances;
    copyText(info->category, entry.category, PClassInfo::kCategorySize);
    copyText(info->name, entry.name, PClassInfo::kNameSize);
    copyText(info->subCategories, entry.subCategories, PClassInfo2::kSubCategoriesSize);
    copyText(info->vendor, mVendor, PClassInfo2::kVendorSize);
    copyText(info->version, "1.2.3", PClassInfo2::kVersionSize);
    copyText(info->sdkVersion, "VST 3.7.2", PClassInfo2::kVersionSize);
    return kResultOk;
}

tresult PLUGIN_API CTestFactory::createInstance(FIDString cid, FIDString iid, void** obj)
{
    if (!obj)
        return kInvalidArgument;
    *obj = nullptr;
    // Lets the tests make every creation fail.
    if (const char* fault = std::getenv("MRV_VST3_FAULT")) {
        if (std::strcmp(fault, "create") == 0) {
            Trace("factory.createInstance refused");
            return kResultFalse;
        }
    }
    for (const ClassEntry& entry : mClasses) {
        if (!FUnknownPrivate::iidEqual(entry.cid.toTUID(), cid) || !entry.create)
            continue;
        if (mComponentOnly && std::strcmp(entry.category, "Audio Module Class") == 0 &&
            !FUnknownPrivate::iidEqual(iid, Vst::IComponent::iid) && !FUnknownPrivate::iidEqual(iid, FUnknown::iid)) {
            Trace("factory.createInstance %s refused: not asked as IComponent", entry.name);
            return kNoInterface;
        }
        FUnknown* instance = entry.create();
        if (!instance)
            return kOutOfMemory;
        const tresult result = instance->queryInterface(iid, obj);
        instance->release();
        Trace("factory.createInstance %s %s", entry.name, result == kResultOk ? "ok" : "no-interface");
        return result == kResultOk ? kResultOk : kNoInterface;
    }
    return kResultFalse;
}

tresult PLUGIN_API CTestFactory::queryInterface(const TUID iid, void** obj)
{
    if (FUnknownPrivate::iidEqual(iid, FUnknown::iid) || FUnknownPrivate::iidEqual(iid, IPluginFactory::iid) ||
        FUnknownPrivate::iidEqual(iid, IPluginFactory2::iid)) {
        addRef();
        *obj = static_cast<IPluginFactory2*>(this);
        return kResultOk;
    }
    *obj = nullptr;
    return kNoInterface;
}

uint32 PLUGIN_API CTestFactory::addRef() { return static_cast<uint32>(FUnknownPrivate::atomicAdd(mRefCount, 1)); }

uint32 PLUGIN_API CTestFactory::release()
{
    const int32 count = FUnknownPrivate::atomicAdd(mRefCount, -1);
    // The module holds one reference of its own until ModuleExit.
    if (count == 0)
        delete this;
    return static_cast<uint32>(count);
}

}  // namespace MrvTest
