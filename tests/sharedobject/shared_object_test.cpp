#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>

#include <dlfcn.h>

#include <gtest/gtest.h>

#include "CTempDir.h"
#include "sharedobject/SharedObject.h"

namespace fs = std::filesystem;
using Morvane::SharedObject;

namespace {

// Every test loads fresh copies, so module state (counters, entry answer)
// never leaks from one test to the next: the loader keys objects by file.
class SharedObjectTest : public ::testing::Test {
protected:
    std::string Place(const char* module, const std::string& relative)
    {
        const fs::path target = fs::path(mTmp) / relative;
        fs::create_directories(target.parent_path());
        fs::copy_file(module, target, fs::copy_options::overwrite_existing);
        return target.string();
    }

    const TestSupport::CTempDir mDir{"aaxw-sharedobject"};
    const std::string mTmp = mDir.Path();
};

template <typename F>
F* Direct(const std::string& path, const char* name)
{
    // RTLD_NOLOAD: look into an already loaded copy without loading one.
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle == nullptr)
        return nullptr;
    F* function = reinterpret_cast<F*>(dlsym(handle, name));
    dlclose(handle);
    return function;
}

bool IsLoaded(const std::string& path)
{
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle != nullptr)
        dlclose(handle);
    return handle != nullptr;
}

std::string StopCapture()
{
    fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

}  // namespace

TEST_F(SharedObjectTest, BundleFolderLayouts)
{
    const std::string flat = Place(PLAIN_MODULE, "Flat.vst/Flat.so");
    const std::string packaged = Place(PLAIN_MODULE, "Pack.vst3/Contents/x86_64-linux/Pack.so");
    // With both layouts present, the packaged one is the bundle's binary.
    const std::string both = Place(PLAIN_MODULE, "Both.vst3/Contents/x86_64-linux/Both.so");
    Place(PLAIN_MODULE, "Both.vst3/Both.so");
    // Product names carry blanks and dots; only the last extension goes.
    const std::string spaced = Place(PLAIN_MODULE, "My Synth 1.2.vst3/Contents/x86_64-linux/My Synth 1.2.so");

    struct Case {
        std::string open;
        std::string expected;
    };
    for (const Case& c : {Case{mTmp + "/Flat.vst", flat}, Case{mTmp + "/Pack.vst3", packaged},
                          Case{mTmp + "/Pack.vst3/", packaged}, Case{mTmp + "/Both.vst3", both},
                          Case{mTmp + "/My Synth 1.2.vst3", spaced}}) {
        SharedObject so;
        ASSERT_TRUE(so.OpenBundle(c.open)) << c.open << ": " << so.lastError;
        auto path = so.GetFunction<const char*()>("so_module_path", false);
        ASSERT_TRUE(path);
        EXPECT_EQ(std::string(path()), c.expected) << c.open;
    }
}

TEST_F(SharedObjectTest, ModuleEntryGetsHandleAndCloseBalancesIt)
{
    const std::string lib = Place(ENTRY_MODULE, "Synth.vst3/Contents/x86_64-linux/Synth.so");
    SharedObject so;
    ASSERT_TRUE(so.OpenBundle(mTmp + "/Synth.vst3")) << so.lastError;
    auto entries = Direct<int()>(lib, "so_entry_count");
    auto exits = Direct<int()>(lib, "so_exit_count");
    auto entryHandle = Direct<void*()>(lib, "so_entry_handle");
    ASSERT_TRUE(entries && exits && entryHandle);

    // Without callEntry the module is not entered.
    auto answer = so.GetFunction<int()>("so_answer", false);
    ASSERT_TRUE(answer);
    EXPECT_EQ(entries(), 0);

    testing::internal::CaptureStdout();
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(so.GetFunction<int()>("so_answer", true));
    EXPECT_EQ(StopCapture(), "");
    EXPECT_EQ(entries(), 3);
    EXPECT_EQ(entryHandle(), so.handle);
    EXPECT_EQ(exits(), 0);

    so.Close();
    EXPECT_EQ(so.handle, nullptr);
    EXPECT_EQ(exits(), 3);
    // Bundles stay mapped: code obtained before Close still runs.
    EXPECT_TRUE(IsLoaded(lib));
    EXPECT_EQ(answer(), 42);

    // Closing twice (and destroying) does not leave the module again.
    so.Close();
    EXPECT_EQ(exits(), 3);
}

TEST_F(SharedObjectTest, ReopenClosesThePreviousModule)
{
    const std::string first = Place(ENTRY_MODULE, "A.vst3/Contents/x86_64-linux/A.so");
    const std::string second = Place(PLAIN_MODULE, "b.so");
    SharedObject so;
    ASSERT_TRUE(so.OpenBundle(mTmp + "/A.vst3"));
    EXPECT_TRUE(so.GetFunction<int()>("so_answer", true));
    ASSERT_TRUE(so.OpenBundle(second));
    EXPECT_EQ(Direct<int()>(first, "so_exit_count")(), 1);
    EXPECT_EQ(so.GetFunction<int()>("so_answer", false)(), 7);
}

TEST_F(SharedObjectTest, RefusingModuleEntryReleasesTheBundle)
{
    const std::string lib = Place(ENTRY_MODULE, "Bad.vst3/Contents/x86_64-linux/Bad.so");
    SharedObject loader;
    ASSERT_TRUE(loader.OpenLibrary(lib)) << loader.lastError;
    loader.GetFunction<void(int)>("so_set_entry_answer", false)(0);

    SharedObject so;
    ASSERT_TRUE(so.OpenBundle(mTmp + "/Bad.vst3"));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(so.GetFunction<int()>("so_answer", true));
    EXPECT_EQ(StopCapture(), "FAILED what happened here ??? \n");
    EXPECT_EQ(so.handle, nullptr);
    EXPECT_FALSE(so.lastError.empty());

    // Every later lookup fails quietly, with or without the entry.
    testing::internal::CaptureStdout();
    EXPECT_FALSE(so.GetFunction<int()>("so_answer", false));
    EXPECT_FALSE(so.GetFunction<int()>("so_answer", true));
    EXPECT_EQ(StopCapture(), "");
    so.Close();
    EXPECT_EQ(loader.GetFunction<int()>("so_exit_count", false)(), 0);
}

// A plain library file is a bundle too, one without a module entry.
TEST_F(SharedObjectTest, PlainLibraryAsBundleAndMissingSymbolsInBothModes)
{
    const std::string lib = Place(PLAIN_MODULE, "plain.so");
    SharedObject bundle;
    ASSERT_TRUE(bundle.OpenBundle(lib)) << bundle.lastError;
    EXPECT_TRUE(bundle.isBundle);
    testing::internal::CaptureStdout();
    std::function<int()> answer = bundle.GetFunction<int()>("so_answer", true);
    EXPECT_EQ(StopCapture(), "Bundle Entry not found\n");
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer(), 7);

    testing::internal::CaptureStdout();
    EXPECT_FALSE(bundle.GetFunction<int()>("no_such_symbol", false));
    EXPECT_EQ(StopCapture(), "Function not found no_such_symbol\n");
    EXPECT_NE(bundle.lastError.find("no_such_symbol"), std::string::npos) << bundle.lastError;

    SharedObject library;
    ASSERT_TRUE(library.OpenLibrary(lib));
    testing::internal::CaptureStdout();
    EXPECT_FALSE(library.GetFunction<int()>("no_such_symbol", true));
    EXPECT_EQ(StopCapture(), "");
    EXPECT_NE(library.lastError.find("no_such_symbol"), std::string::npos) << library.lastError;
}

TEST_F(SharedObjectTest, LoaderModeUnloadsOnClose)
{
    const std::string lib = Place(ENTRY_MODULE, "loader.so");
    SharedObject so;
    ASSERT_TRUE(so.OpenLibrary(lib)) << so.lastError;
    EXPECT_FALSE(so.isBundle);
    auto entries = so.GetFunction<int()>("so_entry_count", true);
    ASSERT_TRUE(entries);
    EXPECT_EQ(entries(), 0) << "loader mode never enters the module";
    so.Close();
    EXPECT_EQ(so.handle, nullptr);
    EXPECT_FALSE(IsLoaded(lib));
}

TEST_F(SharedObjectTest, UnusablePathsFailCleanly)
{
    const std::string text = mTmp + "/notalib.so";
    std::ofstream(text) << "not a shared library\n";
    fs::create_directories(mTmp + "/Empty.vst3/Contents/x86_64-linux");

    for (const std::string& path :
         {mTmp + "/missing.so", mTmp + "/Missing.vst3", text, mTmp + "/Empty.vst3", std::string()}) {
        SharedObject bundle;
        EXPECT_FALSE(bundle.OpenBundle(path)) << path;
        EXPECT_EQ(bundle.handle, nullptr);
        EXPECT_FALSE(bundle.lastError.empty()) << path;
        testing::internal::CaptureStdout();
        EXPECT_FALSE(bundle.GetFunction<int()>("so_answer", true));
        EXPECT_EQ(StopCapture(), "");

        SharedObject library;
        EXPECT_FALSE(library.OpenLibrary(path)) << path;
        EXPECT_FALSE(library.lastError.empty()) << path;
        EXPECT_FALSE(library.GetFunction<int()>("so_answer", false));
    }
    // A bundle folder without its library names the places it looked in.
    SharedObject empty;
    EXPECT_FALSE(empty.OpenBundle(mTmp + "/Empty.vst3"));
    EXPECT_NE(empty.lastError.find("Contents/x86_64-linux/Empty.so"), std::string::npos) << empty.lastError;
}

// Debian's VST 2 plug-ins: a folder holding its library, and a plain file.
TEST(SharedObjectRealPlugins, ResolvesVst2EntryPoints)
{
    const char* folder = "/usr/lib/vst/ProM.vst";
    const char* file = "/usr/lib/vst/amsynth_vst.so";
    if (!fs::exists(folder) || !fs::exists(file))
        GTEST_SKIP() << "dpf-plugins-vst or amsynth not installed";

    SharedObject prom;
    ASSERT_TRUE(prom.OpenBundle(folder)) << prom.lastError;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(prom.GetFunction<void*(void*)>("VSTPluginMain", true));
    EXPECT_TRUE(prom.GetFunction<void*(void*)>("main", true));
    EXPECT_EQ(StopCapture(),
              "Bundle Entry not found\nFunction not found VSTPluginMain\nBundle Entry not found\n");

    SharedObject amsynth;
    ASSERT_TRUE(amsynth.OpenBundle(file)) << amsynth.lastError;
    EXPECT_TRUE(amsynth.GetFunction<void*(void*)>("VSTPluginMain", false));
}
