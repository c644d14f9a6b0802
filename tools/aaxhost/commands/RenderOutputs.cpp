#include "RenderOutputs.h"

#include <algorithm>
#include <filesystem>

#include "AAX_IDescription.h"

namespace AAXHost {

namespace fs = std::filesystem;

namespace {

std::string SafeFileName(std::string name)
{
    for (char& c : name)
        if (c == '/' || c == '\\' || c == '\0')
            c = '_';
    return name.empty() ? std::string("stem") : name;
}

}  // namespace

int OutputChannelCount(const SComponentInfo& c)
{
    int n = 2;
    for (const auto& s : c.stems)
        n += AAX_STEM_FORMAT_CHANNEL_COUNT(s.format);
    return std::max(n, 34);
}

bool OpenOutputs(const SComponentInfo& component, const SRenderConfig& config, int instance,
                 std::vector<SOutputFile>& files, SInstanceReport& report, std::string& error)
{
    const int rate = static_cast<int>(std::lround(config.sampleRate));
    SOutputFile main;
    main.writer = std::make_unique<CWavWriter>();
    main.channels = 2;
    const std::string mainPath = InstanceFileName(config.outPath, instance);
    if (!main.writer->Open(mainPath, 2, rate, error))
        return false;
    report.files.push_back(mainPath);
    files.push_back(std::move(main));
    if (config.stemsDir.empty())
        return true;
    std::error_code ec;
    fs::create_directories(config.stemsDir, ec);
    if (!fs::is_directory(config.stemsDir, ec)) {
        error = "cannot create the stems folder " + config.stemsDir;
        return false;
    }
    int channel = 2;
    for (const auto& stem : component.stems) {
        SOutputFile f;
        f.firstChannel = channel;
        f.channels = std::max(1, AAX_STEM_FORMAT_CHANNEL_COUNT(stem.format));
        channel += f.channels;
        f.writer = std::make_unique<CWavWriter>();
        const std::string path =
            InstanceFileName((fs::path(config.stemsDir) / (SafeFileName(stem.name) + ".wav")).string(), instance);
        if (!f.writer->Open(path, f.channels, rate, error))
            return false;
        report.files.push_back(path);
        files.push_back(std::move(f));
    }
    return true;
}

std::string InstanceFileName(const std::string& path, int instance)
{
    if (instance == 0)
        return path;
    const fs::path p(path);
    return (p.parent_path() / (p.stem().string() + "." + std::to_string(instance) + p.extension().string())).string();
}

}  // namespace AAXHost
