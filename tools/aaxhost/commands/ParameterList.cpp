#include "ParameterList.h"

#include <cstdio>
#include <map>
#include <sstream>
#include <utility>

#include "AAXWrapper_Status.h"

#include "CrashReport.h"
#include "HostInstance.h"
#include "HostString.h"
#include "PluginSession.h"
#include "ResultText.h"

namespace AAXHost {

namespace {
// A wrapper's unit and group of each parameter, by ID; empty for other bundles.
std::map<std::string, std::pair<std::string, std::string>> ReadParameterNotes(AAX_IACFEffectParameters& params)
{
    std::map<std::string, std::pair<std::string, std::string>> notes;
    // Room for a line of every parameter of the largest plug-ins.
    std::vector<char> text(1u << 20);
    uint32_t written = 0;
    if (params.GetCustomData(kWrapperParameterNotesBlockID, static_cast<uint32_t>(text.size()), text.data(),
                             &written) != AAX_SUCCESS ||
        written > text.size())
        return notes;
    std::istringstream lines(std::string(text.data(), written));
    std::string line;
    while (std::getline(lines, line)) {
        const size_t first = line.find('\t');
        const size_t second = first == std::string::npos ? first : line.find('\t', first + 1);
        if (second == std::string::npos)
            continue;
        notes[line.substr(0, first)] = {line.substr(first + 1, second - first - 1), line.substr(second + 1)};
    }
    return notes;
}
}  // namespace

bool ReadParameters(AAX_IACFEffectParameters& params, std::vector<SParameterInfo>& out, std::string& error)
{
    out.clear();
    int32_t count = 0;
    AAX_Result r = params.GetNumberOfParameters(&count);
    if (r != AAX_SUCCESS || count < 0 || count > 100000) {
        error = "GetNumberOfParameters failed with " + ResultText(r);
        return false;
    }
    CHostString bypass;
    params.GetMasterBypassParameter(&bypass);
    const auto notes = ReadParameterNotes(params);
    for (int32_t i = 0; i < count; ++i) {
        CHostString id;
        r = params.GetParameterIDFromIndex(i, &id);
        if (r != AAX_SUCCESS) {
            error = "GetParameterIDFromIndex(" + std::to_string(i) + ") failed with " + ResultText(r);
            return false;
        }
        SParameterInfo p;
        p.id = id.Text();
        const char* pid = p.id.c_str();
        CHostString name, text;
        params.GetParameterName(pid, &name);
        p.name = name.Text();
        params.GetParameterNormalizedValue(pid, &p.value);
        params.GetParameterDefaultNormalizedValue(pid, &p.defaultValue);
        params.GetParameterValueString(pid, &text, 64);
        p.valueText = text.Text();
        params.GetParameterNumberOfSteps(pid, &p.steps);
        AAX_EParameterType type = AAX_eParameterType_Continuous;
        params.GetParameterType(pid, &type);
        p.discrete = type == AAX_eParameterType_Discrete;
        AAX_CBoolean automatable = 0;
        params.GetParameterIsAutomatable(pid, &automatable);
        p.automatable = automatable != 0;
        p.isMasterBypass = p.id == bypass.Text();
        CHostString defaultText;
        if (params.GetParameterStringFromValue(pid, p.defaultValue, &defaultText, 64) == AAX_SUCCESS)
            p.defaultText = defaultText.Text();
        if (p.discrete && p.steps >= 2 && p.steps <= kMostChoicesListed) {
            for (int32_t step = 0; step < p.steps; ++step) {
                CHostString choice;
                params.GetParameterStringFromValue(pid, static_cast<double>(step) / (p.steps - 1), &choice, 64);
                p.choices.push_back(choice.Text());
            }
        }
        const auto note = notes.find(p.id);
        if (note != notes.end())
            std::tie(p.units, p.group) = note->second;
        out.push_back(std::move(p));
    }
    return true;
}

bool ListParameters(CPluginSession& session, const std::string& effectID, std::vector<SParameterInfo>& out,
                    SWrapperStatus& wrapper, std::string& error)
{
    out.clear();
    const SEffectInfo* effect = session.FindEffect(effectID, error);
    if (!effect)
        return false;
    const SComponentInfo* component = FindProcessingComponent(*effect);
    static const SComponentInfo kNoComponent;
    STransportState transport;
    SInstanceConfig config;
    SetPhase("instance creation");
    CHostInstance instance(*effect, component ? *component : kNoComponent, config, transport);
    const bool created = instance.Create(error);
    wrapper = instance.WrapperStatus();
    if (!created)
        return false;
    SetPhase("reading parameters");
    if (!ReadParameters(*instance.Effect(), out, error))
        return false;
    instance.Destroy();
    return true;
}

nlohmann::json ParametersToJson(const std::vector<SParameterInfo>& params, const SWrapperStatus& wrapper)
{
    nlohmann::json arr = nlohmann::json::array();
    for (const auto& p : params)
        arr.push_back({{"id", p.id},
                       {"name", p.name},
                       {"value", p.value},
                       {"default", p.defaultValue},
                       {"text", p.valueText},
                       {"default_text", p.defaultText},
                       {"steps", p.steps},
                       {"discrete", p.discrete},
                       {"choices", p.choices},
                       {"automatable", p.automatable},
                       {"units", p.units},
                       {"group", p.group},
                       {"master_bypass", p.isMasterBypass}});
    return {{"format", "aaxhost-params-1"}, {"wrapper", WrapperStatusToJson(wrapper)}, {"parameters", arr}};
}

void PrintParameters(std::ostream& out, const std::vector<SParameterInfo>& params, const SWrapperStatus& wrapper)
{
    if (wrapper.present)
        out << "host mode " << wrapper.mode << ", wrapping " << wrapper.plugin << ", latency " << wrapper.latency
            << " samples\n";
    char line[256];
    for (const auto& p : params) {
        std::snprintf(line, sizeof line, "%-16s %-24s value %.4f (default %.4f) \"%s\" steps %d%s%s", p.id.c_str(),
                      p.name.c_str(), p.value, p.defaultValue, p.valueText.c_str(), p.steps,
                      p.automatable ? "" : ", not automatable", p.isMasterBypass ? ", master bypass" : "");
        out << line;
        if (!p.units.empty())
            out << ", unit \"" << p.units << "\"";
        if (!p.group.empty())
            out << ", group \"" << p.group << "\"";
        out << "\n";
        if (!p.choices.empty()) {
            out << "  " << std::string(16, ' ') << "choices:";
            for (const std::string& choice : p.choices)
                out << " \"" << choice << "\"";
            out << "\n";
        }
    }
}

}  // namespace AAXHost
