#include "GuiSession.h"

#include <cstdio>

#include "AAX_IEffectGUI.h"
#include "EditorSession.h"
#include "HostInstance.h"
#include "HostViewContainer.h"
#include "PluginSession.h"

namespace AAXHost {

namespace {

bool SameSize(const AAX_Point& a, const AAX_Point& b) { return a.horz == b.horz && a.vert == b.vert; }

}  // namespace

bool RunGui(CPluginSession& session, const SGuiConfig& config, SGuiReport& report, std::string& error)
{
    report = SGuiReport();
    const SEffectInfo* effect = session.FindEffect(config.effectID, error);
    if (!effect)
        return false;
    const SComponentInfo* component = FindProcessingComponent(*effect);
    static const SComponentInfo kNoComponent;
    STransportState transport;
    transport.sampleRate = config.sampleRate;
    SInstanceConfig instanceConfig;
    instanceConfig.sampleRate = config.sampleRate;
    CHostInstance instance(*effect, component ? *component : kNoComponent, instanceConfig, transport);
    if (!instance.Create(error))
        return false;

    AAX_IACFEffectGUI* gui = CreateEffectGui(instance, error, "the view session");
    if (!gui)
        return false;
    const size_t automationBefore = instance.Controller()->Automation().size();
    CHostViewContainer* container = AttachViewContainer(gui);
    gui->GetViewSize(&report.initialSize);
    if (config.print)
        std::printf("view size %gx%g\n", report.initialSize.horz, report.initialSize.vert);
    AAX_Point last = report.initialSize;
    size_t requestsShown = 0;
    for (int i = 0; i < config.timerTicks; ++i) {
        gui->TimerWakeup();
        instance.Effect()->TimerWakeup();
        for (; requestsShown < container->Requests().size(); ++requestsShown) {
            const AAX_Point& p = container->Requests()[requestsShown];
            if (config.print)
                std::printf("plug-in asked for view size %gx%g\n", p.horz, p.vert);
        }
        AAX_Point size = last;
        gui->GetViewSize(&size);
        report.sizesAfterTicks.push_back(size);
        if (config.print && !SameSize(size, last))
            std::printf("view size now %gx%g\n", size.horz, size.vert);
        last = size;
    }
    DetachEffectGui(gui);
    report.requested = container->Requests();
    const auto& automation = instance.Controller()->Automation();
    report.automation.assign(automation.begin() + static_cast<std::ptrdiff_t>(automationBefore), automation.end());
    for (const auto& a : report.automation)
        if (config.print && a.kind != "register" && a.kind != "unregister")
            std::printf("automation %s %s %g\n", a.kind.c_str(), a.parameterID.c_str(), a.value);
    gui->Release();
    container->Release();
    instance.Destroy();
    return true;
}

nlohmann::json GuiReportToJson(const SGuiReport& report)
{
    using nlohmann::json;
    auto point = [](const AAX_Point& p) { return json{{"width", p.horz}, {"height", p.vert}}; };
    json ticks = json::array(), requested = json::array();
    for (const auto& p : report.sizesAfterTicks)
        ticks.push_back(point(p));
    for (const auto& p : report.requested)
        requested.push_back(point(p));
    json automation = json::array();
    for (const auto& a : report.automation)
        automation.push_back({{"kind", a.kind}, {"parameter", a.parameterID}, {"value", a.value},
                              {"origin", a.fromHost ? "host" : "plugin"}});
    return {{"format", "aaxhost-gui-1"},
            {"initial_size", point(report.initialSize)},
            {"sizes_after_ticks", ticks},
            {"requested_sizes", requested},
            {"automation", automation}};
}

}  // namespace AAXHost
