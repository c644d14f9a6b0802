// Drives the resource search of a module loaded, as a host would load it,
// from inside a bundle laid out in a temporary folder.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include <dlfcn.h>
#include <unistd.h>

#include <gtest/gtest.h>

namespace fs = std::filesystem;

namespace {

struct CProbe {
    void* handle = nullptr;
    const char* (*dyLibPath)() = nullptr;
    void (*startCapture)(const char*) = nullptr;
    const char* (*takeCapturedLog)() = nullptr;
    const char* (*folders)() = nullptr;
    const char* (*getAbsolutePath)(const char*, const char*) = nullptr;

    // Copies the probe module to <root>/<name>.aaxplugin/Contents/x86_64-linux/<name>.so
    // and opens it through `openPath` (defaults to the copy's path).
    static CProbe Install(const fs::path& root, const std::string& name, std::string openPath = {})
    {
        const fs::path exeDir = root / (name + ".aaxplugin") / "Contents" / "x86_64-linux";
        fs::create_directories(exeDir);
        const fs::path exe = exeDir / (name + ".so");
        fs::copy_file(RESOURCES_PROBE_MODULE, exe, fs::copy_options::overwrite_existing);
        if (openPath.empty())
            openPath = exe.string();
        CProbe probe;
        probe.handle = dlopen(openPath.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (probe.handle == nullptr) {
            ADD_FAILURE() << dlerror();
            return probe;
        }
        probe.dyLibPath = reinterpret_cast<const char* (*)()>(dlsym(probe.handle, "ProbeDyLibPath"));
        probe.startCapture = reinterpret_cast<void (*)(const char*)>(dlsym(probe.handle, "ProbeStartCapture"));
        probe.takeCapturedLog = reinterpret_cast<const char* (*)()>(dlsym(probe.handle, "ProbeTakeCapturedLog"));
        probe.folders = reinterpret_cast<const char* (*)()>(dlsym(probe.handle, "ProbeFolders"));
        probe.getAbsolutePath =
            reinterpret_cast<const char* (*)(const char*, const char*)>(dlsym(probe.handle, "ProbeGetAbsolutePath"));
        return probe;
    }

    std::string Find(const std::string& relative) const
    {
        const char* found = getAbsolutePath(relative.c_str(), "<none>");
        return found != nullptr ? found : "<none>";
    }
};

void Touch(const std::string& path)
{
    std::ofstream(path) << "x";
}

// Runs the search with the working directory set, since entry 7 is the
// relative path as given.
class CWorkingDir {
public:
    explicit CWorkingDir(const fs::path& dir) : mOld(fs::current_path()) { fs::current_path(dir); }
    ~CWorkingDir() { fs::current_path(mOld); }

private:
    fs::path mOld;
};

}  // namespace

class ResourceSearch : public ::testing::Test {
protected:
    static void SetUpTestSuite()
    {
        char pattern[] = "/tmp/aaxw-resources-XXXXXX";
        ASSERT_NE(mkdtemp(pattern), nullptr);
        sTmp = pattern;
        sName = "ResProbe" + std::to_string(getpid());
        const std::string exeFolder = sTmp + "/root/" + sName + ".aaxplugin/Contents/x86_64-linux";

        // The nine entries as the search must build them, in order.
        sEntries = {
            exeFolder + "/",
            exeFolder + "/resources/",
            exeFolder + "/../../../",
            exeFolder + "/../../../resources/",
            exeFolder + "/../Resources/",
            exeFolder + "/../Resources/resources/",
            "",
            "/Library//Morvane/" + sName + "/",
            "/Library//Morvane/" + sName + "//resources/",
        };

        sProbe = CProbe::Install(sTmp + "/root", sName);
        ASSERT_NE(sProbe.handle, nullptr);

        const std::string conf = sTmp + "/log.conf";
        std::ofstream(conf) << "description debug\n";
        sProbe.startCapture(conf.c_str());
        sFolders = sProbe.folders();
        sFillLog = sProbe.takeCapturedLog();

        fs::create_directories(sTmp + "/cwd");
        for (size_t i = 0; i < sEntries.size(); ++i) {
            if (i == 6)
                continue;
            std::error_code error;
            fs::create_directories(sEntries[i], error);
        }
        // The program-data folders need a writable /Library; without it the
        // last two places are left out of the placement test.
        sProgramDataWritable = access(sEntries[8].c_str(), W_OK) == 0;
    }

    static void TearDownTestSuite()
    {
        std::error_code error;
        fs::remove_all(sTmp, error);
        // Only our product folder goes: /Library/Morvane may be shared with
        // other tests running at the same time.
        fs::remove_all("/Library/Morvane/" + sName, error);
    }

    // Folder of entry k on disk (entry 7, the bare relative path, is the
    // working directory).
    static std::string PlaceOnDisk(size_t k) { return k == 6 ? sTmp + "/cwd/" : sEntries[k]; }

    static inline std::string sTmp;
    static inline std::string sName;
    static inline std::vector<std::string> sEntries;
    static inline CProbe sProbe;
    static inline std::string sFolders;
    static inline std::string sFillLog;
    static inline bool sProgramDataWritable = false;
};

TEST_F(ResourceSearch, FolderListFollowsSearchOrder)
{
    std::string expected;
    for (const std::string& entry : sEntries)
        expected += entry + "\n";
    EXPECT_EQ(sFolders, expected);

    // The list is built once: asking again changes nothing.
    EXPECT_EQ(std::string(sProbe.folders()), expected);
}

TEST_F(ResourceSearch, FillReportsEachStepInTheLog)
{
    const std::string& exe = sEntries[0] + sName + ".so";
    for (const std::string& message : {
             std::string("| info   | [CONF] ProgramData Path : /Library/\n"),
             "| notice | [CONF] GetDyLibFullPath filename:" + exe + "\n",
             "| notice | [CONF] productname:" + sName + "\n",
             "| notice | [CONF] Get Current Binary Folder absolute path:" + sEntries[0] + "\n",
             "| notice | [CONF] Get Current Bundle absolute path:" + sEntries[2] + "\n",
             // This line reports the bundle folder, not the Resources folder.
             "| notice | [CONF] Get Current Bundle Resources path:" + sEntries[2] + "\n",
             "| notice | [CONF] Get Program Data Product Absolute path:" + sEntries[7] + "\n",
         })
        EXPECT_NE(sFillLog.find(message), std::string::npos) << "missing: " << message << "in:\n" << sFillLog;
}

TEST_F(ResourceSearch, FirstPlaceHoldingTheFileWins)
{
    CWorkingDir cwd(sTmp + "/cwd");
    const size_t places = sProgramDataWritable ? 9 : 7;
    for (size_t k = 0; k < places; ++k) {
        const std::string name = "placed_" + std::to_string(k) + ".txt";
        for (size_t later = k; later < places; ++later)
            Touch(PlaceOnDisk(later) + name);
        EXPECT_EQ(sProbe.Find(name), sEntries[k] + name) << "place " << k + 1;
        for (size_t later = k; later < places; ++later)
            fs::remove(PlaceOnDisk(later) + name);
    }
    const std::string log = sProbe.takeCapturedLog();
    EXPECT_NE(log.find("| info   | [CONF] File found on " + sEntries[0] + "placed_0.txt\n"), std::string::npos)
        << log;
    if (!sProgramDataWritable)
        GTEST_SKIP() << "/Library not writable: places 8 and 9 not checked";
}

TEST_F(ResourceSearch, FindsBundleFolders)
{
    // A VST 3 plug-in is a folder; it must be found like a file.
    fs::create_directories(PlaceOnDisk(4) + "Plug.vst3/Contents");
    EXPECT_EQ(sProbe.Find("Plug.vst3"), sEntries[4] + "Plug.vst3");
    fs::remove_all(PlaceOnDisk(4) + "Plug.vst3");
}

TEST_F(ResourceSearch, AbsolutePathResolvesToItself)
{
    const std::string absolute = sTmp + "/absolute.txt";
    Touch(absolute);
    EXPECT_EQ(sProbe.Find(absolute), absolute);
}

TEST_F(ResourceSearch, NotFoundListsEveryTriedPath)
{
    sProbe.takeCapturedLog();
    const std::string name = "absent_" + sName + ".txt";
    EXPECT_EQ(sProbe.Find(name), "<none>");

    std::string tried;
    for (const std::string& entry : sEntries)
        tried += entry + name + "\n";
    const std::string log = sProbe.takeCapturedLog();
    EXPECT_NE(log.find("| warning | [CONF] File not found on " + tried + "\n"), std::string::npos) << log;
}

TEST_F(ResourceSearch, EachBundleResolvesAroundItself)
{
    // A second bundle in the same process, opened through a path holding
    // "." components, must neither share the first one's folders nor keep
    // the "." components in its own path.
    // Its file name has an inner dot: only the last extension is dropped
    // from the product name.
    const std::string other = "Other" + std::to_string(getpid()) + ".v2";
    const std::string root = sTmp + "/root2";
    const std::string dotted = root + "/./" + other + ".aaxplugin/Contents/./x86_64-linux/" + other + ".so";
    CProbe second = CProbe::Install(root, other, dotted);
    ASSERT_NE(second.handle, nullptr);
    const std::string exeFolder = root + "/" + other + ".aaxplugin/Contents/x86_64-linux";
    EXPECT_EQ(std::string(second.dyLibPath()), exeFolder + "/" + other + ".so");
    const std::string folders = second.folders();
    EXPECT_EQ(folders.substr(0, folders.find('\n')), exeFolder + "/");
    EXPECT_NE(folders.find("\n/Library//Morvane/" + other + "/\n"), std::string::npos) << folders;

    fs::create_directories(root + "/" + other + ".aaxplugin/Contents/Resources");
    Touch(root + "/" + other + ".aaxplugin/Contents/Resources/only_in_second.txt");
    EXPECT_EQ(second.Find("only_in_second.txt"), exeFolder + "/../Resources/only_in_second.txt");
    EXPECT_EQ(sProbe.Find("only_in_second.txt"), "<none>");
}
