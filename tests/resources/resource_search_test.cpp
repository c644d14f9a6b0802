// Drives the resource search of a module loaded, as a host would load it,
// from inside a bundle laid out in a temporary folder.
#include <dlfcn.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace fs = std::filesystem;

namespace {

// One loaded copy of the probe module, driven through its exports.
struct CProbe {
    void* handle = nullptr;

    // Copies the probe module to <root>/<name>.aaxplugin/Contents/x86_64-linux/<name>.so
    // and opens it through `openPath` (defaults to the copy's path).
    static CProbe Install(const fs::path& root, const std::string& name, std::string openPath = {})
    {
        const fs::path exeDir = root / (name + ".aaxplugin") / "Contents" / "x86_64-linux";
        fs::create_directories(exeDir);
        const fs::path exe = exeDir / (name + ".so");
        fs::copy_file(RESOURCES_PROBE_MODULE, exe, fs::copy_options::overwrite_existing);
        CProbe probe{dlopen(openPath.empty() ? exe.c_str() : openPath.c_str(), RTLD_NOW | RTLD_LOCAL)};
        if (probe.handle == nullptr)
            ADD_FAILURE() << dlerror();
        return probe;
    }
    template <typename F>
    F* Fn(const char* name) const { return reinterpret_cast<F*>(dlsym(handle, name)); }
    std::string Text(const char* function) const { return Fn<const char*()>(function)(); }
    std::string Find(const std::string& relative) const
    {
        const char* found = Fn<const char*(const char*, const char*)>("ProbeGetAbsolutePath")(relative.c_str(), "-");
        return found != nullptr ? found : "<none>";
    }
};

void Touch(const std::string& path) { std::ofstream(path) << "x"; }

}  // namespace

class ResourceSearch : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        char pattern[] = "/tmp/aaxw-resources-XXXXXX";
        sTmp = mkdtemp(pattern);
        sName = "ResProbe" + std::to_string(getpid());
        const std::string exeFolder = sTmp + "/root/" + sName + ".aaxplugin/Contents/x86_64-linux";
        // The nine entries as the search must build them, in order.
        const std::string data = "/Library//Morvane/" + sName + "/";
        sEntries = {exeFolder + "/", exeFolder + "/resources/", exeFolder + "/../../../",
                    exeFolder + "/../../../resources/", exeFolder + "/../Resources/",
                    exeFolder + "/../Resources/resources/", "", data, data + "/resources/"};
        sProbe = CProbe::Install(sTmp + "/root", sName);
        ASSERT_NE(sProbe.handle, nullptr);
        const std::string conf = sTmp + "/log.conf";
        std::ofstream(conf) << "description debug\n";
        sProbe.Fn<void(const char*)>("ProbeStartCapture")(conf.c_str());
        sFolders = sProbe.Text("ProbeFolders");
        std::error_code error;
        for (size_t i = 0; i < sEntries.size(); ++i)
            fs::create_directories(PlaceOnDisk(i), error);
        // Without a writable /Library the last two places are not tested.
        sProgramDataWritable = access(sEntries[8].c_str(), W_OK) == 0;
    }

    // Only our product folder goes: /Library/Morvane may be shared.
    static void TearDownTestSuite()
    {
        std::error_code error;
        fs::remove_all(sTmp, error);
        fs::remove_all("/Library/Morvane/" + sName, error);
    }

    // Entry 7, the bare relative path, is the working directory.
    static std::string PlaceOnDisk(size_t k) { return k == 6 ? sTmp + "/cwd/" : sEntries[k]; }

    static inline std::string sTmp, sName, sFolders;
    static inline std::vector<std::string> sEntries;
    static inline CProbe sProbe;
    static inline bool sProgramDataWritable = false;
};

TEST_F(ResourceSearch, FolderListFollowsSearchOrder)
{
    std::string expected;
    for (const std::string& entry : sEntries)
        expected += entry + "\n";
    EXPECT_EQ(sFolders, expected);
    EXPECT_EQ(sProbe.Text("ProbeFolders"), expected) << "built once";
}

TEST_F(ResourceSearch, FirstPlaceHoldingTheFileWins)
{
    const fs::path oldCwd = fs::current_path();
    fs::current_path(sTmp + "/cwd");
    const size_t places = sProgramDataWritable ? 9 : 7;
    for (size_t k = 0; k < places; ++k) {
        const std::string name = "placed_" + std::to_string(k) + ".txt";
        for (size_t later = k; later < places; ++later)
            Touch(PlaceOnDisk(later) + name);
        EXPECT_EQ(sProbe.Find(name), sEntries[k] + name) << "place " << k + 1;
        for (size_t later = k; later < places; ++later)
            fs::remove(PlaceOnDisk(later) + name);
    }
    fs::current_path(oldCwd);
    if (!sProgramDataWritable)
        GTEST_SKIP() << "/Library not writable: places 8 and 9 not checked";
}

// A VST 3 plug-in is a folder and must be found like a file; an absolute
// path resolves to itself; a miss lists every path tried.
TEST_F(ResourceSearch, FoldersAbsolutePathsAndMisses)
{
    fs::create_directories(PlaceOnDisk(5) + "Plug.vst3/Contents");
    EXPECT_EQ(sProbe.Find("Plug.vst3"), sEntries[5] + "Plug.vst3");
    Touch(sTmp + "/absolute.txt");
    EXPECT_EQ(sProbe.Find(sTmp + "/absolute.txt"), sTmp + "/absolute.txt");

    sProbe.Text("ProbeTakeCapturedLog");
    const std::string name = "absent_" + sName + ".txt";
    EXPECT_EQ(sProbe.Find(name), "<none>");
    std::string tried;
    for (const std::string& entry : sEntries)
        tried += entry + name + "\n";
    EXPECT_NE(sProbe.Text("ProbeTakeCapturedLog").find("| warning | [CONF] File not found on " + tried + "\n"),
              std::string::npos);
}

// A second bundle in the same process, opened through a path holding "."
// components, shares neither the first one's folders nor the "." components;
// of its inner-dotted name only the last extension is dropped.
TEST_F(ResourceSearch, EachBundleResolvesAroundItself)
{
    const std::string other = "Other" + std::to_string(getpid()) + ".v2";
    const std::string root = sTmp + "/root2";
    const std::string dotted = root + "/./" + other + ".aaxplugin/Contents/./x86_64-linux/" + other + ".so";
    CProbe second = CProbe::Install(root, other, dotted);
    ASSERT_NE(second.handle, nullptr);
    const std::string exeFolder = root + "/" + other + ".aaxplugin/Contents/x86_64-linux";
    const std::string folders = second.Text("ProbeFolders");
    EXPECT_EQ(folders.substr(0, folders.find('\n')), exeFolder + "/");
    EXPECT_NE(folders.find("\n/Library//Morvane/" + other + "/\n"), std::string::npos) << folders;
    fs::create_directories(root + "/" + other + ".aaxplugin/Contents/Resources");
    Touch(root + "/" + other + ".aaxplugin/Contents/Resources/only_in_second.txt");
    EXPECT_EQ(second.Find("only_in_second.txt"), exeFolder + "/../Resources/only_in_second.txt");
    EXPECT_EQ(sProbe.Find("only_in_second.txt"), "<none>");
}
