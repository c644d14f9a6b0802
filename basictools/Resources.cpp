#include "Resources.h"

#include "RegularFile.h"

#include <fstream>

#include "Locations.h"
#include "logger/CLog.h"

namespace Morvane {
namespace {

constexpr const char* kCategory = "description";

}  // namespace

bool Resources::FillResourcesFolderList()
{
    std::string programData;
    const bool haveProgramData = GetLocation(LocationProgramData, programData);
    MV_LOG(kCategory, kLogInfo, "[CONF] ProgramData Path : ", programData);
    if (!haveProgramData) {
        MV_LOG(kCategory, kLogError, "[CONF] ProgramData not found - Path : ", programData);
        return false;
    }

    // GetDyLibFullPath is compiled into this file, so it names the image
    // (bundle executable) that this copy of Resources belongs to.
    const std::string executable = GetDyLibFullPath();
    MV_LOG(kCategory, kLogNotice, "[CONF] GetDyLibFullPath filename:", executable);
    if (executable.empty()) {
        MV_LOG(kCategory, kLogNotice, "[CONF] DyLibFullPath not found - Path : ", executable);
        return false;
    }

    const std::string::size_type lastSlash = executable.rfind('/');
    const std::string fileName =
        lastSlash == std::string::npos ? executable : executable.substr(lastSlash + 1);

    std::string productName = fileName;
    const std::string::size_type dot = fileName.rfind('.');
    const std::string::size_type slash = fileName.rfind('/');
    if (slash == std::string::npos || (dot != std::string::npos && slash < dot))
        productName = fileName.substr(0, dot);
    MV_LOG(kCategory, kLogNotice, "[CONF] productname:", productName);

    const std::string executableFolder = GetFolder(executable) + "/";
    MV_LOG(kCategory, kLogNotice, "[CONF] Get Current Binary Folder absolute path:", executableFolder);
    m_folders.push_back(executableFolder);
    m_folders.push_back(executableFolder + "resources" + "/");

    // Three levels up from <Bundle>/Contents/<platform>/: the folder that
    // holds the bundle.
    const std::string bundleFolder = GetFolder(executable) + "/" + ".." + "/" + ".." + "/" + ".." + "/";
    MV_LOG(kCategory, kLogNotice, "[CONF] Get Current Bundle absolute path:", bundleFolder);
    m_folders.push_back(bundleFolder);
    m_folders.push_back(bundleFolder + "resources" + "/");

    const std::string bundleResources = GetFolder(executable) + "/" + ".." + "/" + "Resources" + "/";
    // Deliberately reports the bundle folder, as this line always has.
    MV_LOG(kCategory, kLogNotice, "[CONF] Get Current Bundle Resources path:", bundleFolder);
    m_folders.push_back(bundleResources);
    m_folders.push_back(bundleResources + "resources" + "/");

    // Lets an absolute path resolve to itself.
    m_folders.push_back(std::string());

    const std::string productData = programData + "/" + "Morvane" + "/" + productName + "/";
    MV_LOG(kCategory, kLogNotice, "[CONF] Get Program Data Product Absolute path:", productData);
    m_folders.push_back(productData);
    m_folders.push_back(productData + "/" + "resources" + "/");
    return true;
}

bool Resources::GetAbsolutePath(const std::string& relativePath, std::string& outAbsolutePath)
{
    if (m_folders.empty())
        FillResourcesFolderList();

    std::string tried;
    for (const std::string& folder : m_folders) {
        const std::string candidate = folder + relativePath;
        // Readability is what matters, not existence: an unreadable file
        // is as good as absent to the caller. Only regular files and folders
        // count: opening a FIFO to find out would block for ever.
        if (IsReadableFileOrFolder(candidate)) {
            outAbsolutePath = candidate;
            MV_LOG(kCategory, kLogInfo, "[CONF] File found on ", candidate);
            return true;
        }
        tried += candidate;
        tried += "\n";
    }
    MV_LOG(kCategory, kLogWarning, "[CONF] File not found on ", tried);
    return false;
}

}  // namespace Morvane
