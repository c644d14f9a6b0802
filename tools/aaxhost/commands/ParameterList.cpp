#include "ParameterList.h"

#include <cstdio>

#include "CrashReport.h"
#include "HostInstance.h"
#include "HostString.h"
#include "PluginSession.h"
#include "ResultText.h"

namespace AAXHost {

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
        std::snprintf(line, sizeof line, "%-16s %-24s value %.4f (default %.4f) \"%s\" steps %d%s%s\n", p.id.c_str(),
                      p.name.c_str(), p.value, p.defaultValue, p.valueText.c_str(), p.steps,
                      p.automatable ? "" : ", not automatable", p.isMasterBypass ? ", master bypass" : "");
        out << line;
        if (!p.choices.empty()) {
            out << "  " << std::string(16, ' ') << "choices:";
            for (const std::string& choice : p.choices)
                out << " \"" << choice << "\"";
            out << "\n";
        }
    }
}

}  // namespace AAXHost
