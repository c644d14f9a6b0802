// Opens an effect's view the way a host does: creates the GUI object,
// attaches a view container, polls the size and the timer, then closes and
// releases everything. With an X display, the container holds a real
// top-level window that follows the plug-in's size requests; without one,
// a container of type NULL.
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
    int32_t timerTicks = 5;  // without a window
    double seconds = 1.0;    // with a window: how long it stays up
    bool window = true;      // a real window when DISPLAY is set
    std::string screenshot;  // PNG of the window before it closes
    bool click = false;      // a pointer click at (clickX, clickY) in the window
    int clickX = 0, clickY = 0;
    int cycles = 1;  // open and close the view this many times
    double sampleRate = 48000.0;
    bool print = true;  // size lines on standard output as they happen
};

struct SGuiReport {
    bool windowed = false;
    AAX_Point initialSize;
    std::vector<AAX_Point> sizesAfterTicks;  // GetViewSize after each timer tick (last cycle)
    std::vector<AAX_Point> requested;         // SetViewSize calls from the plug-in (last cycle)
    int windowWidth = 0, windowHeight = 0;    // when the view closed (last cycle)
    int xErrors = 0;                          // X protocol errors while the views were open
    int filesAfterFirst = -1, filesAfterLast = -1;  // open file descriptors after the first and last view
    std::vector<SAutomationEvent> automation;  // requests made from opening to closing the views
};

bool RunGui(CPluginSession& session, const SGuiConfig& config, SGuiReport& report, std::string& error);
nlohmann::json GuiReportToJson(const SGuiReport& report);

}  // namespace AAXHost
