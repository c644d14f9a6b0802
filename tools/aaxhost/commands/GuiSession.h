// Opens an effect's view the way a host does, without a window: creates the
// GUI object, attaches a view container, polls the size and the timer, then
// closes and releases everything.
#pragma once

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "AAX.h"
#include "HostController.h"

namespace AAXHost {

class CPluginSession;

struct SGuiConfig {
    std::string effectID;
    int32_t timerTicks = 5;
    double sampleRate = 48000.0;
    bool print = true;  // size lines on standard output as they happen
};

struct SGuiReport {
    AAX_Point initialSize;
    std::vector<AAX_Point> sizesAfterTicks;  // GetViewSize after each timer tick
    std::vector<AAX_Point> requested;         // SetViewSize calls from the plug-in
    std::vector<SAutomationEvent> automation;  // requests made from opening to closing the view
};

bool RunGui(CPluginSession& session, const SGuiConfig& config, SGuiReport& report, std::string& error);
nlohmann::json GuiReportToJson(const SGuiReport& report);

}  // namespace AAXHost
