#include "GuiSession.h"

#include <dirent.h>

#include <chrono>
#include <cstdio>
#include <thread>

#include "AAX_IEffectGUI.h"
#include "EditorSession.h"
#include "HostInstance.h"
#include "HostViewContainer.h"
#include "PluginSession.h"
#include "X11Window.h"

namespace AAXHost {

namespace {

// How often the window's host calls TimerWakeup, as AAX hosts do (~30 Hz
// or faster).
constexpr auto kTimerPeriod = std::chrono::milliseconds(15);
// The click comes once the editor has had time to draw.
constexpr double kClickAt = 0.4;
constexpr int kTicksBeforeClick = 20;
constexpr int kTicksAfterClick = 10;
constexpr int kTicksWaitingForEditor = 200;

bool SameSize(const AAX_Point& a, const AAX_Point& b) { return a.horz == b.horz && a.vert == b.vert; }

// Open file descriptors of this process (display connections among them):
// what opening and closing views must give back.
int OpenFiles()
{
    int count = 0;
    if (DIR* dir = opendir("/proc/self/fd")) {
        while (readdir(dir) != nullptr)
            ++count;
        closedir(dir);
        count -= 3;  // ".", ".." and the listing itself
    }
    return count;
}

class CViewRun {
public:
    CViewRun(CHostInstance& instance, const SGuiConfig& config, SGuiReport& report)
        : mInstance(instance), mConfig(config), mReport(report)
    {
    }

    bool Run(bool windowed, std::string& error)
    {
        AAX_IACFEffectGUI* gui = CreateEffectGui(mInstance, error, "the view session");
        if (!gui)
            return false;
        CX11Window window;
        if (windowed && !window.Open(100, 100, "aaxhost", error))
            return false;
        mGui = gui;
        mWindow = windowed ? &window : nullptr;
        mContainer = AttachViewContainer(gui, windowed ? window.Id() : 0);
        mReport.requested.clear();
        mReport.sizesAfterTicks.clear();
        gui->GetViewSize(&mReport.initialSize);
        mLast = mReport.initialSize;
        if (mConfig.print)
            std::printf("view size %gx%g\n", mLast.horz, mLast.vert);
        bool ok = true;
        if (mWindow) {
            mWindow->Resize(static_cast<int>(mLast.horz), static_cast<int>(mLast.vert));
            ok = RunWindow(error);
        } else {
            for (int i = 0; i < mConfig.timerTicks; ++i)
                Tick();
        }
        if (mWindow)
            mWindow->Size(mReport.windowWidth, mReport.windowHeight);
        DetachEffectGui(gui);
        mReport.requested = mContainer->Requests();
        gui->Release();
        mContainer->Release();
        window.Close();
        return ok;
    }

private:
    bool RunWindow(std::string& error)
    {
        const auto start = std::chrono::steady_clock::now();
        const auto clickTime = start + std::chrono::duration<double>(kClickAt * mConfig.seconds);
        const auto end = start + std::chrono::duration<double>(mConfig.seconds);
        bool clicked = !mConfig.click;
        int ticks = 0, ticksSinceClick = 0;
        // The editor draws and reads its clicks on its own connection, in
        // its timer calls: however slow the machine, it gets a few calls
        // before the click and after it.
        while (std::chrono::steady_clock::now() < end ||
               (mConfig.click && (ticks < kTicksBeforeClick || ticksSinceClick < kTicksAfterClick))) {
            mWindow->Pump();
            Tick();
            ++ticks;
            if (clicked)
                ++ticksSinceClick;
            // Not before the editor's window covers the point, or the click
            // lands on the host's window (give up waiting after 3 s more).
            if (!clicked && ticks >= kTicksBeforeClick && std::chrono::steady_clock::now() >= clickTime &&
                (mWindow->HasChildAt(mConfig.clickX, mConfig.clickY) || ticks >= kTicksBeforeClick + kTicksWaitingForEditor)) {
                if (!mWindow->Click(mConfig.clickX, mConfig.clickY, error))
                    return false;
                clicked = true;
                if (mConfig.print)
                    std::printf("clicked at %d,%d\n", mConfig.clickX, mConfig.clickY);
            }
            std::this_thread::sleep_for(kTimerPeriod);
        }
        if (!mConfig.screenshot.empty()) {
            // What the editor drew last: a few more timer calls, with time
            // for the server to carry out what it sent on its connection.
            for (int i = 0; i < kTicksBeforeClick / 4; ++i) {
                mWindow->Pump();
                Tick();
                std::this_thread::sleep_for(kTimerPeriod);
            }
            if (!mWindow->Screenshot(mConfig.screenshot, error))
                return false;
            if (mConfig.print)
                std::printf("screenshot %s\n", mConfig.screenshot.c_str());
        } else {
            Tick();
        }
        return true;
    }

    // One timer call of the view and of the effect, and what the plug-in
    // asked for meanwhile.
    void Tick()
    {
        mGui->TimerWakeup();
        mInstance.Effect()->TimerWakeup();
        for (; mRequestsShown < mContainer->Requests().size(); ++mRequestsShown) {
            const AAX_Point& p = mContainer->Requests()[mRequestsShown];
            if (mConfig.print)
                std::printf("plug-in asked for view size %gx%g\n", p.horz, p.vert);
            if (mWindow) {
                mWindow->Resize(static_cast<int>(p.horz), static_cast<int>(p.vert));
                if (mConfig.print)
                    std::printf("window resized to %gx%g\n", p.horz, p.vert);
            }
        }
        AAX_Point size = mLast;
        mGui->GetViewSize(&size);
        mReport.sizesAfterTicks.push_back(size);
        if (mConfig.print && !SameSize(size, mLast))
            std::printf("view size now %gx%g\n", size.horz, size.vert);
        mLast = size;
    }

    CHostInstance& mInstance;
    const SGuiConfig& mConfig;
    SGuiReport& mReport;
    AAX_IACFEffectGUI* mGui = nullptr;
    CHostViewContainer* mContainer = nullptr;
    CX11Window* mWindow = nullptr;
    AAX_Point mLast;
    size_t mRequestsShown = 0;
};

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

    report.windowed = CX11Window::WantedAndPossible(config.window);
    if (!report.windowed && (!config.screenshot.empty() || config.click)) {
        error = "--screenshot and --click need a window: set DISPLAY (xvfb-run gives one)";
        instance.Destroy();
        return false;
    }
    const size_t automationBefore = instance.Controller()->Automation().size();
    const int errorsBefore = CX11Window::Errors();
    bool ok = true;
    for (int cycle = 0; ok && cycle < config.cycles; ++cycle) {
        CViewRun run(instance, config, report);
        ok = run.Run(report.windowed, error);
        // Counted after the first view: plug-ins may open what they keep for
        // the rest of the process (a toolkit, fonts) once.
        if (cycle == 0)
            report.filesAfterFirst = OpenFiles();
    }
    report.filesAfterLast = OpenFiles();
    report.xErrors = CX11Window::Errors() - errorsBefore;
    const auto& automation = instance.Controller()->Automation();
    report.automation.assign(automation.begin() + static_cast<std::ptrdiff_t>(automationBefore), automation.end());
    for (const auto& a : report.automation)
        if (config.print && a.kind != "register" && a.kind != "unregister")
            std::printf("automation %s %s %g\n", a.kind.c_str(), a.parameterID.c_str(), a.value);
    if (report.windowed && config.print)
        std::printf("window %dx%d, X errors %d\n", report.windowWidth, report.windowHeight, report.xErrors);
    instance.Destroy();
    return ok;
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
    json out = {{"format", "aaxhost-gui-1"},
                {"windowed", report.windowed},
                {"initial_size", point(report.initialSize)},
                {"sizes_after_ticks", ticks},
                {"requested_sizes", requested},
                {"automation", automation}};
    if (report.windowed) {
        out["window"] = {{"width", report.windowWidth}, {"height", report.windowHeight}};
        out["x_errors"] = report.xErrors;
    }
    if (report.filesAfterFirst >= 0) {
        out["open_files"] = {{"after_first_view", report.filesAfterFirst}, {"after_last_view", report.filesAfterLast}};
    }
    return out;
}

}  // namespace AAXHost
