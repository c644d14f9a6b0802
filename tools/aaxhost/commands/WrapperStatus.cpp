#include "WrapperStatus.h"

#include <sstream>
#include <vector>

#include "AAXWrapper_Status.h"
#include "CrashReport.h"
#include "HostInstance.h"
#include "PluginSession.h"

namespace AAXHost {

SWrapperStatus ReadWrapperStatus(const AAX_IACFEffectParameters& effect)
{
    SWrapperStatus status;
    // Paths and reasons are short; a block that does not fit is not ours.
    std::vector<char> text(16384);
    uint32_t written = 0;
    if (effect.GetCustomData(kWrapperStatusBlockID, static_cast<uint32_t>(text.size()), text.data(), &written) !=
            AAX_SUCCESS ||
        written == 0 || written > text.size())
        return status;
    status.present = true;
    std::istringstream lines(std::string(text.data(), written));
    std::string line;
    while (std::getline(lines, line)) {
        const auto equals = line.find('=');
        if (equals == std::string::npos)
            continue;
        const std::string key = line.substr(0, equals);
        const std::string value = line.substr(equals + 1);
        if (key == "mode")
            status.mode = value;
        else if (key == "loaded")
            status.loaded = value == "1";
        else if (key == "plugin")
            status.plugin = value;
        else if (key == "error")
            status.error = value;
        else if (key == "vendor")
            status.vendor = value;
        else if (key == "version")
            status.version = value;
        else if (key == "bypass")
            status.pluginBypasses = value == "plugin";
    }
    return status;
}

SWrapperStatus ProbeWrapperStatus(CPluginSession& session)
{
    std::string error;
    const SEffectInfo* effect = session.FindEffect("", error);
    if (!effect)
        return SWrapperStatus();
    const SComponentInfo* component = FindProcessingComponent(*effect);
    static const SComponentInfo kNoComponent;
    STransportState transport;
    SetPhase("instance creation");
    CHostInstance instance(*effect, component ? *component : kNoComponent, SInstanceConfig(), transport);
    instance.Create(error);
    SWrapperStatus status = instance.WrapperStatus();
    instance.Destroy();
    return status;
}

nlohmann::json WrapperStatusToJson(const SWrapperStatus& wrapper)
{
    if (!wrapper.present)
        return nullptr;
    return {{"host_mode", wrapper.mode}, {"loaded", wrapper.loaded}, {"plugin", wrapper.plugin}, {"error", wrapper.error},
            {"vendor", wrapper.vendor}, {"version", wrapper.version}, {"latency", wrapper.latency},
            {"bypass", wrapper.pluginBypasses ? "plugin" : "copy"}};
}

std::string NotLoadedMessage(const SWrapperStatus& status)
{
    return "the wrapped plug-in could not be loaded: " + (status.error.empty() ? std::string("no reason given")
                                                                                : status.error);
}

}  // namespace AAXHost
