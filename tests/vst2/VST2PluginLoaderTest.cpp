// Entry-function lookup of the loader, with Debian's VST 2 plug-ins and the
// probe's variants; the vendor version as the host shows it.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "Vst2TestSupport.h"
#include "vst2/CVST2PluginLoader.h"
#include "vst2/VendorVersion.h"

using namespace Vst2Test;

namespace {

// The address the loader's callable would call.
void* EntryAddress(const CVST2PluginLoader::EntryFunction& entry)
{
    auto* target = entry.target<AEffect* (*)(audioMasterCallback)>();
    return target != nullptr ? reinterpret_cast<void*>(*target) : nullptr;
}

// The same library's exported symbol, through the loader's own mapping.
void* ExportedSymbol(const std::string& path, const char* name)
{
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle == nullptr)
        return nullptr;
    void* symbol = dlsym(handle, name);
    dlclose(handle);
    return symbol;
}

}  // namespace

// VSTPluginMain is preferred, then main, then main_macho.
TEST(VST2PluginLoader, EntryIsLookedUpInOrder)
{
    const std::pair<std::string, const char*> cases[] = {
        {std::string(kDebianVstDir) + "amsynth_vst.so", "VSTPluginMain"},  // exports both names
        {std::string(kDebianVstDir) + "Kars-vst.so", "main"},
        {std::string(kDebianVstDir) + "Nekobi-vst.so", "main"},
        {BuiltPlugin("vst2probe_macho.so"), "main_macho"},
    };
    for (const auto& [path, name] : cases) {
        if (!FileExists(path))
            continue;
        CVST2PluginLoader loader;
        auto entry = loader.loadLibrary(path.c_str());
        ASSERT_TRUE(entry) << path;
        EXPECT_EQ(EntryAddress(entry), ExportedSymbol(path, name)) << path;
    }
    const std::string amsynth = cases[0].first;
    if (FileExists(amsynth)) {
        EXPECT_NE(ExportedSymbol(amsynth, "VSTPluginMain"), ExportedSymbol(amsynth, "main"))
            << "the two entries must differ for the preference to be tested";
    }
}

TEST(VST2PluginLoader, FilesWithoutAnEntryGiveAnEmptyCallableAndReloadingReplacesThem)
{
    const CTempDir dir;
    const std::string notALibrary = dir.WriteFile("not-a-library.so", "this is text, not code\n");
    CVST2PluginLoader loader;
    for (const std::string& path : {BuiltPlugin("vst2probe_noentry.so"), BuiltPlugin("does-not-exist.so"), notALibrary,
                                    std::string(VST2_TEST_VST_DIR)})
        EXPECT_FALSE(loader.loadLibrary(path.c_str())) << path;
    EXPECT_FALSE(loader.loadLibrary(nullptr));
    auto entry = loader.loadLibrary(BuiltPlugin("vst2probe.so").c_str());
    ASSERT_TRUE(entry);
    EXPECT_EQ(EntryAddress(entry), ExportedSymbol(BuiltPlugin("vst2probe.so"), "VSTPluginMain"));
}

TEST(VendorVersion, BytesFromMostSignificantWithoutLeadingZeroBytes)
{
    EXPECT_EQ(Morvane::FormatVendorVersion(0), "");
    EXPECT_EQ(Morvane::FormatVendorVersion(256), "V1.0");
    EXPECT_EQ(Morvane::FormatVendorVersion(0x01020304), "V1.2.3.4");
    EXPECT_EQ(Morvane::FormatVendorVersion(0x10203), "V1.2.3");
    EXPECT_EQ(Morvane::FormatVendorVersion(1100), "V4.76");
    EXPECT_EQ(Morvane::FormatVendorVersion(7), "V7");
    // Inner and trailing zero bytes are kept.
    EXPECT_EQ(Morvane::FormatVendorVersion(0x01000000), "V1.0.0.0");
    EXPECT_EQ(Morvane::FormatVendorVersion(0x00010001), "V1.0.1");
    EXPECT_EQ(Morvane::FormatVendorVersion(-1), "V255.255.255.255");
}
