#include <dlfcn.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "CTempDir.h"
#include "sharedobject/SharedObject.h"

namespace fs = std::filesystem;
using Morvane::SharedObject;

namespace {

// Fresh copies per test: the loader keys objects by file, so module state
// (counters, entry answer) never leaks between tests.
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

// RTLD_NOLOAD: looks into an already loaded copy without loading one.
template <typename F>
F* Direct(const std::string& path, const char* name)
{
    void* handle = dlopen(path.c_str(), RTLD_NOW | RTLD_NOLOAD);
    if (handle == nullptr)
        return nullptr;
    F* function = reinterpret_cast<F*>(dlsym(handle, name));
    dlclose(handle);
    return function;
}

}  // namespace

TEST_F(SharedObjectTest, BundleFolderLayouts)
{
    // With both layouts present the packaged one wins; product names carry
    // blanks and dots, of which only the last extension goes.
    Place(PLAIN_MODULE, "Both.vst3/Both.so");
    const std::pair<std::string, std::string> cases[] = {
        {mTmp + "/Flat.vst", Place(PLAIN_MODULE, "Flat.vst/Flat.so")},
        {mTmp + "/Both.vst3/", Place(PLAIN_MODULE, "Both.vst3/Contents/x86_64-linux/Both.so")},
        {mTmp + "/My Synth 1.2.vst3", Place(PLAIN_MODULE, "My Synth 1.2.vst3/Contents/x86_64-linux/My Synth 1.2.so")}};
    for (const auto& [open, expected] : cases) {
        SharedObject so;
        ASSERT_TRUE(so.OpenBundle(open)) << open << ": " << so.lastError;
        auto path = so.GetFunction<const char*()>("so_module_path", false);
        ASSERT_TRUE(path);
        EXPECT_EQ(std::string(path()), expected) << open;
    }
}

TEST_F(SharedObjectTest, ModuleEntryAndExitAreBalancedReopenClosesThePreviousAndARefusedEntryReleases)
{
    const std::string lib = Place(ENTRY_MODULE, "Synth.vst3/Contents/x86_64-linux/Synth.so");
    SharedObject so;
    ASSERT_TRUE(so.OpenBundle(mTmp + "/Synth.vst3")) << so.lastError;
    auto entries = Direct<int()>(lib, "so_entry_count");
    auto exits = Direct<int()>(lib, "so_exit_count");
    ASSERT_TRUE(entries && exits);
    auto answer = so.GetFunction<int()>("so_answer", false);
    EXPECT_EQ(entries(), 0) << "without callEntry the module is not entered";
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(so.GetFunction<int()>("so_answer", true));
    EXPECT_EQ(entries(), 3);
    EXPECT_EQ(Direct<void*()>(lib, "so_entry_handle")(), so.handle);
    // Opening another bundle leaves this one, once per entry.
    ASSERT_TRUE(so.OpenBundle(Place(PLAIN_MODULE, "b.so")));
    EXPECT_EQ(exits(), 3);
    EXPECT_EQ(so.GetFunction<int()>("so_answer", false)(), 7);
    so.Close();
    EXPECT_EQ(so.handle, nullptr);
    // Bundles stay mapped: code obtained before Close still runs.
    EXPECT_EQ(answer(), 42);

    // A refused entry releases the bundle: every later lookup fails, with or
    // without the entry, and the module is never left.
    const std::string bad = Place(ENTRY_MODULE, "Bad.vst3/Contents/x86_64-linux/Bad.so");
    ASSERT_TRUE(so.OpenBundle(mTmp + "/Bad.vst3"));
    Direct<void(int)>(bad, "so_set_entry_answer")(0);
    auto badExits = Direct<int()>(bad, "so_exit_count");
    EXPECT_FALSE(so.GetFunction<int()>("so_answer", true));
    EXPECT_FALSE(so.GetFunction<int()>("so_answer", false));
    EXPECT_FALSE(so.GetFunction<int()>("so_answer", true));
    EXPECT_EQ(so.handle, nullptr);
    EXPECT_FALSE(so.lastError.empty());
    so.Close();
    EXPECT_EQ(badExits(), 0);
}

// A plain library file is a bundle too, one without a module entry; loader
// mode never enters a module and really unloads it.
TEST_F(SharedObjectTest, PlainLibraryMissingSymbolsAndLoaderMode)
{
    const std::string lib = Place(PLAIN_MODULE, "plain.so");
    SharedObject bundle;
    ASSERT_TRUE(bundle.OpenBundle(lib)) << bundle.lastError;
    EXPECT_TRUE(bundle.isBundle);
    EXPECT_EQ(bundle.GetFunction<int()>("so_answer", true)(), 7);
    EXPECT_FALSE(bundle.GetFunction<int()>("no_such_symbol", false));
    EXPECT_NE(bundle.lastError.find("no_such_symbol"), std::string::npos) << bundle.lastError;

    const std::string entryLib = Place(ENTRY_MODULE, "loader.so");
    SharedObject library;
    ASSERT_TRUE(library.OpenLibrary(entryLib));
    EXPECT_FALSE(library.isBundle);
    EXPECT_FALSE(library.GetFunction<int()>("no_such_symbol", true));
    EXPECT_NE(library.lastError.find("no_such_symbol"), std::string::npos) << library.lastError;
    EXPECT_EQ(library.GetFunction<int()>("so_entry_count", true)(), 0);
    library.Close();
    EXPECT_EQ(library.handle, nullptr);
    EXPECT_EQ(Direct<int()>(entryLib, "so_answer"), nullptr) << "still loaded";
}

TEST_F(SharedObjectTest, UnusablePathsFailCleanly)
{
    const std::string text = mTmp + "/notalib.so";
    std::ofstream(text) << "not a shared library\n";
    fs::create_directories(mTmp + "/Empty.vst3/Contents/x86_64-linux");

    for (const std::string& path :
         {mTmp + "/missing.so", mTmp + "/Missing.vst3", text, mTmp + "/Empty.vst3", std::string()}) {
        SharedObject bundle, library;
        EXPECT_FALSE(bundle.OpenBundle(path) || library.OpenLibrary(path)) << path;
        EXPECT_EQ(bundle.handle, nullptr);
        EXPECT_FALSE(bundle.lastError.empty() || library.lastError.empty()) << path;
        EXPECT_FALSE(bundle.GetFunction<int()>("so_answer", true) || library.GetFunction<int()>("so_answer", false));
    }
    // A bundle folder without its library names the places it looked in.
    SharedObject empty;
    EXPECT_FALSE(empty.OpenBundle(mTmp + "/Empty.vst3"));
    EXPECT_NE(empty.lastError.find("Contents/x86_64-linux/Empty.so"), std::string::npos) << empty.lastError;
}
