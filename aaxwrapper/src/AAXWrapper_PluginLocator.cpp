#include "AAXWrapper_PluginLocator.h"

#include <cstdlib>

#include "CSingleton.h"
#include "RegularFile.h"
#include "Resources.h"
#include "stlutils.h"
#include "logger/CLog.h"

namespace Morvane {

namespace {

#ifndef __APPLE__
// Folders named in a PATH-like variable, in their order.
void AppendVariableFolders(const char* variable, std::vector<std::string>& folders)
{
    const char* const value = std::getenv(variable);
    if (value == nullptr)
        return;
    std::vector<std::string> entries;
    stlutils::tokenize(value, entries, ":");
    for (const std::string& folder : entries)
            folders.push_back(folder.back() == '/' ? folder : folder + "/");
}

void AppendLinuxFolders(const std::string& name, const std::string& extension, std::vector<std::string>& out)
{
    const char* const home = std::getenv("HOME");
    const std::string homeText = home != nullptr ? home : "";
    std::vector<std::string> folders;
    std::vector<std::string> fileNames;
    if (extension == "vst") {
        AppendVariableFolders("VST_PATH", folders);
        AppendVariableFolders("LXVST_PATH", folders);
        if (!homeText.empty()) {
            folders.push_back(homeText + "/.vst/");
            folders.push_back(homeText + "/.lxvst/");
        }
        folders.push_back("/usr/local/lib/vst/");
        folders.push_back("/usr/local/lib/lxvst/");
        folders.push_back("/usr/lib/vst/");
        folders.push_back("/usr/lib/lxvst/");
        fileNames = {name + ".vst", name + ".so"};
    } else if (extension == "vst3") {
        AppendVariableFolders("VST3_PATH", folders);
        if (!homeText.empty())
            folders.push_back(homeText + "/.vst3/");
        folders.push_back("/usr/local/lib/vst3/");
        folders.push_back("/usr/lib/vst3/");
        fileNames = {name + ".vst3"};
    }
    for (const std::string& folder : folders)
        for (const std::string& fileName : fileNames)
            out.push_back(folder + fileName);
}
#endif


}  // namespace

std::vector<std::string> BuildPluginCandidates(const std::string& name, const std::string& extension)
{
    const std::string fileName = name + "." + extension;
    std::vector<std::string> candidates;
    std::string resourcePath;
    if (CSingleton<Resources>::getInstance()->GetAbsolutePath(fileName, resourcePath))
        candidates.push_back(resourcePath);
    candidates.push_back("/Library/Audio/Plug-Ins/VST/" + fileName);
    candidates.push_back("/Library/Audio/Plug-Ins/VST3/" + fileName);
#ifndef __APPLE__
    AppendLinuxFolders(name, extension, candidates);
#endif
    return candidates;
}

std::string FindPluginFile(const std::vector<std::string>& candidates)
{
    for (const std::string& candidate : candidates) {
        // Whether the path can be read, not what it holds: a bundle folder
        // counts as found. A FIFO or a device does not (opening one to find
        // out could block for ever).
        if (IsReadableFileOrFolder(candidate))
            return candidate;
        MV_LOG("fakehost", kLogWarning, "VST file not found on ", candidate);
    }
    return std::string();
}

}  // namespace Morvane
