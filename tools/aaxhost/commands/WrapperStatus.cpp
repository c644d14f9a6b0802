#include "WrapperStatus.h"

#include <cstdlib>
#include <exception>
#include <sstream>
#include <vector>

#include "AAXWrapper_Status.h"
#include "CrashReport.h"
#include "HostInstance.h"
#include "PluginSession.h"

namespace AAXHost {

namespace {
// "<bus>|<channels>|<plays>|<name>"; the name may hold the separator.
bool ParseOutput(const std::string& value, SWrappedOutput& out)
{
    const size_t a = value.find('|');
    const size_t b = a == std::string::npos ? a : value.find('|', a + 1);
    const size_t c = b == std::string::npos ? b : value.find('|', b + 1);
    if (c == std::string::npos)
        return false;
    try {
        out.bus = std::stoi(value.substr(0, a));
        out.channels = std::stoi(value.substr(a + 1, b - a - 1));
    } catch (const std::exception&) {
        return false;
    }
    out.plays = value.substr(b + 1, c - b - 1);
    out.name = value.substr(c + 1);
    return true;
}
}  // namespace

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
        else if (key == "tail")
            status.tail = value;
        else if (key == "output") {
            SWrappedOutput output;
            if (ParseOutput(value, output))
                status.outputs.push_back(std::move(output));
        }
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
    nlohmann::json outputs = nlohmann::json::array();
    for (const SWrappedOutput& o : wrapper.outputs)
        outputs.push_back({{"bus", o.bus}, {"channels", o.channels}, {"plays", o.plays}, {"name", o.name}});
    return {{"host_mode", wrapper.mode},
            {"loaded", wrapper.loaded},
            {"plugin", wrapper.plugin},
            {"error", wrapper.error},
            {"vendor", wrapper.vendor},
            {"version", wrapper.version},
            {"latency", wrapper.latency},
            {"bypass", wrapper.pluginBypasses ? "plugin" : "copy"},
            {"tail", TailToJson(wrapper.tail)},
            {"outputs", outputs}};
}

nlohmann::json TailToJson(const std::string& tail)
{
    if (tail.empty())
        return nullptr;
    if (tail == "infinite")
        return tail;
    char* end = nullptr;
    const unsigned long long samples = std::strtoull(tail.c_str(), &end, 10);
    return end != tail.c_str() && *end == 0 ? nlohmann::json(samples) : nlohmann::json(nullptr);
}

std::string NotLoadedMessage(const SWrapperStatus& status)
{
    return "the wrapped plug-in could not be loaded: " + (status.error.empty() ? std::string("no reason given")
                                                                                : status.error);
}

}  // namespace AAXHost
