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

// VSTPluginMain is preferred, then main, then main_macho; each miss is printed.
TEST(VST2PluginLoader, EntryIsLookedUpInOrder)
{
    struct SCase {
        std::string path;
        const char* entry;
        const char* printed;  // the misses, in order
    };
    const SCase cases[] = {
        {std::string(kDebianVstDir) + "amsynth_vst.so", "VSTPluginMain", ""},  // exports both names
        {std::string(kDebianVstDir) + "Kars-vst.so", "main", "Function not found VSTPluginMain\n"},
        {std::string(kDebianVstDir) + "Nekobi-vst.so", "main", "Function not found VSTPluginMain\n"},
        {BuiltPlugin("vst2probe_macho.so"), "main_macho",
         "Function not found VSTPluginMain\nFunction not found main\n"},
    };
    for (const SCase& c : cases) {
        if (!FileExists(c.path))
            continue;
        CVST2PluginLoader loader;
        testing::internal::CaptureStdout();
        auto entry = loader.loadLibrary(c.path.c_str());
        const std::string printed = testing::internal::GetCapturedStdout();
        ASSERT_TRUE(entry) << c.path;
        EXPECT_EQ(EntryAddress(entry), ExportedSymbol(c.path, c.entry)) << c.path;
        std::string misses;  // other lines (log start-up, bundle entry) do not matter here
        for (size_t at = printed.find("Function not found"); at != std::string::npos;
             at = printed.find("Function not found", at + 1))
            misses += printed.substr(at, printed.find('\n', at) + 1 - at);
        EXPECT_EQ(misses, c.printed) << c.path;
    }
    const std::string amsynth = cases[0].path;
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
