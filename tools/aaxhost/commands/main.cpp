// aaxhost: loads a built AAX bundle the way a host does and describes,
// renders or opens it.
#include <CLI/CLI.hpp>

#include <cstdio>
#include <iostream>

#include "CrashReport.h"
#include "DescriptionPrinter.h"
#include "DirectRenderCommand.h"
#include "GuiSession.h"
#include "JsonOutput.h"
#include "ParameterList.h"
#include "PluginSession.h"
#include "Renderer.h"
#include "ValidateCommand.h"
#include "WrapperStatus.h"

using namespace AAXHost;

namespace {

int Fail(const std::string& what)
{
    std::fprintf(stderr, "aaxhost: error: %s\n", what.c_str());
    return 1;
}

// Shuts the plug-in down and reports a failure of that step; returns the
// exit code.
int CloseSession(CPluginSession& session, int code)
{
    std::string error;
    if (!session.Close(error))
        return Fail(error);
    return code;
}

int Describe(const std::string& bundle, bool json)
{
    CJsonOutput jsonOut(json);
    CPluginSession session;
    std::string error;
    if (!session.Open(bundle, error))
        return Fail(error);
    const SWrapperStatus wrapper = ProbeWrapperStatus(session);
    const bool closed = session.Close(error);
    SDescribeContext where{bundle, session.Bundle().libraryPath, session.LastCanUnloadNow(), wrapper};
    if (json)
        jsonOut.Write(DescriptionToJson(session.Info(), where));
    else
        PrintDescription(std::cout, session.Info(), where);
    return closed ? 0 : Fail(error);
}

int DoRender(const std::string& bundle, const SRenderConfig& config)
{
    CJsonOutput jsonOut(config.json);
    CPluginSession session;
    std::string error;
    if (!session.Open(bundle, error))
        return Fail(error);
    SRenderReport report;
    if (!Render(session, config, report, error)) {
        const int code = Fail(error);
        return CloseSession(session, code);
    }
    if (config.json)
        jsonOut.Write(RenderReportToJson(report));
    else
        PrintRenderReport(std::cout, report);
    if (!RenderOutputIsFinite(report))
        return CloseSession(session, Fail("the output holds NaN or infinite samples (see the channel counts)"));
    return CloseSession(session, 0);
}

int DoParams(const std::string& bundle, const std::string& effectID, bool json)
{
    CJsonOutput jsonOut(json);
    CPluginSession session;
    std::string error;
    if (!session.Open(bundle, error))
        return Fail(error);
    std::vector<SParameterInfo> params;
    SWrapperStatus wrapper;
    if (!ListParameters(session, effectID, params, wrapper, error)) {
        const int code = Fail(error);
        return CloseSession(session, code);
    }
    if (json)
        jsonOut.Write(ParametersToJson(params, wrapper));
    else
        PrintParameters(std::cout, params, wrapper);
    return CloseSession(session, 0);
}

// "X,Y": two whole numbers of window pixels.
bool ParseClick(const std::string& text, int& x, int& y)
{
    char extra = 0;
    return std::sscanf(text.c_str(), "%d,%d%c", &x, &y, &extra) == 2 && x >= 0 && y >= 0;
}

constexpr const char* kClickFormat = "--click takes X,Y: two whole numbers of window pixels, e.g. 70,40";

int DoGui(const std::string& bundle, SGuiConfig config, bool json)
{
    CJsonOutput jsonOut(json);
    CPluginSession session;
    std::string error;
    if (!session.Open(bundle, error))
        return Fail(error);
    config.print = !json;
    SGuiReport report;
    if (!RunGui(session, config, report, error)) {
        const int code = Fail(error);
        return CloseSession(session, code);
    }
    if (json)
        jsonOut.Write(GuiReportToJson(report));
    return CloseSession(session, 0);
}

}  // namespace

int main(int argc, char** argv)
{
    CLI::App app{"aaxhost: load an AAX plug-in bundle as a host does, describe it, render it, open its view"};
    app.require_subcommand(1);

    std::string bundle;
    bool json = false;

    auto* describe = app.add_subcommand("describe", "Print the plug-in's registered description");
    describe->add_option("bundle", bundle, "Path of the .aaxplugin bundle")->required();
    describe->add_flag("--json", json, "Print the stable JSON form");

    std::string paramsEffect;
    auto* params = app.add_subcommand("params", "List the effect's parameters (IDs for render --set)");
    params->add_option("bundle", bundle, "Path of the .aaxplugin bundle")->required();
    params->add_option("--effect", paramsEffect, "Effect ID (default: the first)");
    params->add_flag("--json", json, "Print the stable JSON form");

    SRenderConfig rc;
    std::vector<std::string> sets;
    std::string meter;
    auto* render = app.add_subcommand("render", "Render audio through the plug-in into WAV files");
    render->add_option("bundle", bundle, "Path of the .aaxplugin bundle")->required();
    render->add_option("--out,-o", rc.outPath, "Main stereo output WAV (32-bit float)")->required();
    render->add_option("--midi", rc.midiPath, "Standard MIDI File to play");
    render->add_option("--rate", rc.sampleRate, "Sample rate in Hz")->capture_default_str();
    render->add_option("--block", rc.blockSize, "Buffer size in samples")->capture_default_str();
    render->add_option("--tempo", rc.tempo, "Tempo in BPM (default: the MIDI file's, else 120)");
    render->add_option("--meter", meter, "Meter, e.g. 3/4 (default 4/4)");
    render->add_option("--seconds", rc.seconds, "Length in seconds (default: MIDI length plus tail)");
    render->add_option("--tail", rc.tail,
                       "Seconds rendered after the last MIDI event (default: the tail the plug-in declares, "
                       "at least 2 and at most 30)");
    render->add_option("--set", sets, "Parameter change ID=VALUE or ID=VALUE@SECONDS (normalised 0..1)");
    render->add_flag("--bypass", rc.bypass, "Engage the master bypass");
    render->add_flag("--test-input", rc.testInput, "Feed a distinct sine to every input channel");
    render->add_option("--save-state", rc.saveState, "Save every chunk of instance 0 after the render");
    render->add_option("--load-state", rc.loadState, "Restore chunks into every instance before the render");
    render->add_option("--stems", rc.stemsDir, "Folder for one WAV file per output stem");
    render->add_option("--plot", rc.plotPath,
                       "PNG picture: waveforms of the main output and every stem that sounds, spectrum of the main output");
    render->add_option("--instances", rc.instances, "Instances processed in one batch")->capture_default_str();
    render->add_option("--effect", rc.effectID, "Effect ID to run (default: the first)");
    render->add_flag("--stopped", rc.stopped, "The transport reports stopped, at the song start");
    render->add_flag("--compensate", rc.compensate,
                     "Trim the latency the effect reports before the first buffer from the start of every file "
                     "(rendering as much longer)");
    render->add_flag("--offline", rc.offline,
                     "Tell the effect the render is offline (the wrapper's notification, before the first buffer)");
    render->add_option("--editor-at", rc.editorAt, "Open the view of instance 0 at this time (seconds) until the end")
        ->check(CLI::Range(0.0, 86400.0));
    std::string renderClick;
    render->add_option("--click", renderClick, "Click the view's window at X,Y once it is up (with --editor-at)");
    bool renderNoWindow = false;
    render->add_flag("--no-window", renderNoWindow, "Open the view in a container of type NULL even with a display");
    render->add_flag("--json", rc.json, "Print the summary as JSON");
    bool noProgress = false;
    render->add_flag("--no-progress", noProgress, "Never show the progress bar");

    SGuiConfig gc;
    auto* gui = app.add_subcommand("gui", "Open the plug-in's view: in an X11 window when DISPLAY is set");
    gui->add_option("bundle", bundle, "Path of the .aaxplugin bundle")->required();
    gui->add_option("--ticks", gc.timerTicks, "Timer ticks to run without a window")->capture_default_str();
    gui->add_option("--seconds", gc.seconds, "How long the window stays up")
        ->check(CLI::Range(0.0, 3600.0))
        ->capture_default_str();
    gui->add_option("--screenshot", gc.screenshot, "Write the window's pixels to this PNG file before it closes");
    std::string click;
    gui->add_option("--click", click, "Click the window at X,Y (window pixels) once the editor is up");
    gui->add_option("--cycles", gc.cycles, "Open and close the view this many times")
        ->check(CLI::Range(1, 100000))
        ->capture_default_str();
    bool noWindow = false;
    gui->add_flag("--no-window", noWindow, "Use a container of type NULL even when DISPLAY is set");
    gui->add_option("--effect", gc.effectID, "Effect ID to open (default: the first)");
    gui->add_flag("--json", json, "Print the sizes as JSON");

    SDirectRenderRequest dr;
    auto* renderDirect = app.add_subcommand(
        "render-direct", "Host the wrapped plug-in directly, without the wrapper, and report its output levels");
    renderDirect->add_option("plugin", dr.plugin, "A wrapper bundle (its plug-in is hosted), a VST 2 library or a VST 3 bundle")
        ->required();
    renderDirect->add_option("--midi", dr.midiPath, "Standard MIDI File to play");
    renderDirect->add_flag("--test-input", dr.testInput, "Feed a distinct sine to every input channel");
    renderDirect->add_option("--seconds", dr.seconds, "Length in seconds")->capture_default_str();
    renderDirect->add_option("--rate", dr.sampleRate, "Sample rate in Hz")->capture_default_str();
    renderDirect->add_option("--block", dr.blockSize, "Buffer size in samples")->capture_default_str();
    renderDirect->add_flag("--json", dr.json, "Print the levels as JSON");
    renderDirect->add_option("--out", dr.outPath, "WAV file of the plug-in's main pair (32-bit float)");

    SValidateConfig vc;
    auto* validate = app.add_subcommand("validate", "Run the named checks a host's validator makes; exit 0 only when all pass");
    validate->add_option("bundle", vc.bundle, "Path of the .aaxplugin bundle")->required();
    validate->add_option("--level", vc.level, "Strictness from 1 to 10: how many rounds, rates and buffers")
        ->check(CLI::Range(1, 10))
        ->capture_default_str();
    validate->add_option("--only", vc.only, "Run only these checks (by name)");
    validate->add_option("--seed", vc.seed, "Seed of the random values (default: a new one, printed)");
    validate->add_option("--timeout", vc.timeout, "Seconds one plug-in call may take before it counts as hung")
        ->check(CLI::Range(0.1, 3600.0))
        ->capture_default_str();
    validate->add_option("--fail-on", vc.failOn,
                         "Which failures make the exit status 1: any (default), or only the wrapper's")
        ->check(CLI::IsMember({"any", "wrapper"}));
    validate->add_flag("--json", vc.json, "Print the aaxhost-validate-1 JSON document");
    validate->add_flag("--no-progress", noProgress, "Never show the progress bar");

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& e) {
        // Help and version are answered as the parser does; every other
        // command-line error is an ordinary failure, exit 1.
        if (e.get_exit_code() == 0)
            return app.exit(e);
        return Fail(e.what());
    }
    // Sanitizer builds report crashes themselves, in more detail. validate
    // runs each check in a child process whose death by a signal its parent
    // reports.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)
    if (!*validate)
        InstallCrashReport();
#endif
    InstallExitReport();
    const auto run = [&]() -> int {
        if (*validate) {
            vc.progress = !noProgress;
            return RunValidate(vc);
        }
        if (*describe)
            return Describe(bundle, json);
        if (*renderDirect)
            return RunDirectRender(dr);
        if (*params)
            return DoParams(bundle, paramsEffect, json);
        if (*render) {
            std::string error;
            for (const auto& s : sets) {
                SParameterSet set;
                if (!ParseParameterSet(s, set, error))
                    return Fail(error);
                rc.sets.push_back(set);
            }
            if (!meter.empty() && !ParseMeter(meter, rc.meterNumerator, rc.meterDenominator, error))
                return Fail(error);
            if (!renderClick.empty()) {
                if (!ParseClick(renderClick, rc.editorClickX, rc.editorClickY))
                    return Fail(kClickFormat);
                if (rc.editorAt < 0.0)
                    return Fail("--click needs --editor-at: the view must be open to be clicked");
                rc.editorClick = true;
            }
            rc.editorWindow = !renderNoWindow;
            rc.progress = !noProgress;
            return DoRender(bundle, rc);
        }
        if (!click.empty()) {
            if (!ParseClick(click, gc.clickX, gc.clickY))
                return Fail(kClickFormat);
            gc.click = true;
        }
        gc.window = !noWindow;
        return DoGui(bundle, gc, json);
    };
    const int code = run();
    MarkNormalExit();
    return code;
}
