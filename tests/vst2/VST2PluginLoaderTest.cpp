// Entry-function lookup of the loader, with Debian's VST 2 plug-ins and the
// probe's variants.
#include <dlfcn.h>
#include <gtest/gtest.h>

#include "Vst2TestSupport.h"
#include "vst2/CVST2PluginLoader.h"

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

TEST(VST2PluginLoader, RealPluginExportingBothNamesIsEnteredThroughVSTPluginMain)
{
    const std::string path = std::string(kDebianVstDir) + "amsynth_vst.so";
    if (!FileExists(path))
        GTEST_SKIP() << path << " not installed";
    CVST2PluginLoader loader;
    auto entry = loader.loadLibrary(path.c_str());
    ASSERT_TRUE(entry);
    void* preferred = ExportedSymbol(path, "VSTPluginMain");
    ASSERT_NE(preferred, nullptr);
    ASSERT_NE(preferred, ExportedSymbol(path, "main")) << "the two entries must differ for this test to mean anything";
    EXPECT_EQ(EntryAddress(entry), preferred);
}

TEST(VST2PluginLoader, RealPluginsExportingOnlyMainAreEnteredThroughMain)
{
    for (const char* name : {"Kars-vst.so", "Nekobi-vst.so"}) {
        const std::string path = std::string(kDebianVstDir) + name;
        if (!FileExists(path))
            continue;
        CVST2PluginLoader loader;
        testing::internal::CaptureStdout();
        auto entry = loader.loadLibrary(path.c_str());
        const std::string printed = testing::internal::GetCapturedStdout();
        ASSERT_TRUE(entry) << name;
        EXPECT_EQ(EntryAddress(entry), ExportedSymbol(path, "main")) << name;
        EXPECT_NE(printed.find("Function not found VSTPluginMain"), std::string::npos) << printed;
        EXPECT_EQ(printed.find("Function not found main\n"), std::string::npos) << printed;
    }
}

TEST(VST2PluginLoader, MachOnlyEntryIsFoundAfterTwoFailedLookups)
{
    const std::string path = BuiltPlugin("vst2probe_macho.so");
    CVST2PluginLoader loader;
    testing::internal::CaptureStdout();
    auto entry = loader.loadLibrary(path.c_str());
    const std::string printed = testing::internal::GetCapturedStdout();
    ASSERT_TRUE(entry);
    EXPECT_EQ(EntryAddress(entry), ExportedSymbol(path, "main_macho"));
    const size_t first = printed.find("Function not found VSTPluginMain\n");
    const size_t second = printed.find("Function not found main\n");
    EXPECT_NE(first, std::string::npos) << printed;
    EXPECT_NE(second, std::string::npos) << printed;
    EXPECT_LT(first, second);
}

TEST(VST2PluginLoader, FilesWithoutAnEntryGiveAnEmptyCallable)
{
    const CTempDir dir;
    const std::string notALibrary = dir.WriteFile("not-a-library.so", "this is text, not code\n");
    for (const std::string& path : {BuiltPlugin("vst2probe_noentry.so"), BuiltPlugin("does-not-exist.so"), notALibrary,
                                    std::string(VST2_TEST_VST_DIR)}) {
        CVST2PluginLoader loader;
        EXPECT_FALSE(loader.loadLibrary(path.c_str())) << path;
    }
    CVST2PluginLoader loader;
    EXPECT_FALSE(loader.loadLibrary(nullptr));
}

TEST(VST2PluginLoader, ReloadingReplacesTheLibrary)
{
    CVST2PluginLoader loader;
    EXPECT_FALSE(loader.loadLibrary(BuiltPlugin("does-not-exist.so").c_str()));
    auto entry = loader.loadLibrary(BuiltPlugin("vst2probe.so").c_str());
    ASSERT_TRUE(entry);
    EXPECT_EQ(EntryAddress(entry), ExportedSymbol(BuiltPlugin("vst2probe.so"), "VSTPluginMain"));
}
