// The one abstract VST host through which the AAX front end drives the
// wrapped plug-in, whatever its format. Every operation is a public,
// non-virtual entry that checks its thread (ThreadRole.h), keeps a failure
// from crossing into the AAX host (one error line, a neutral answer), and
// then calls the format's private implementation. A back end therefore
// places no thread check of its own at a contract operation.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "AAX_CEffectParameters.h"
#include "AAX_IController.h"
#include "fakehost/DenormalScope.h"
#include "fakehost/FakeHostResults.h"
#include "fakehost/HostMode.h"
#include "fakehost/IPluginEditListener.h"
#include "fakehost/ProcessBlock.h"
#include "ThreadRole.h"

class AAX_IViewContainer;

class IFakeHost {
public:
    explicit IFakeHost(AAX_CEffectParameters& owner, EHostMode mode = EHostMode::kClassic)
        : mEffectParameters(owner), mHostMode(mode)
    {
    }
    virtual ~IFakeHost() = default;
    IFakeHost(const IFakeHost&) = delete;
    IFakeHost& operator=(const IFakeHost&) = delete;

    // --- Main thread: life cycle, description, parameters, state. ---------
    // May allocate, lock the controller and wait for process calls to leave.
    // True when the plug-in objects exist; otherwise GetLoadError says why.
    bool Init();
    void Setup();
    void Quit();
    std::string GetLoadError() const;
    std::string GetPluginVendor();
    std::string GetPluginVersion();
    int32_t GetPluginProductUniqueID();
    // -1 when there is no plug-in to ask.
    int GetParameterCount();
    SParameterInfo GetParameterInfo(int index);
    // The parameter's present value, normalised; empty when it cannot tell.
    std::optional<double> GetParameterValue(int index);
    // The plug-in's own text, unit included, for a normalised value of a
    // parameter; empty when the plug-in has none for that value.
    std::optional<std::string> GetParameterText(int index, double value);
    // The normalised value a text stands for, as the plug-in reads it where
    // it can; never changes the plug-in. Empty when the text means nothing.
    std::optional<double> GetParameterValueFromText(int index, const std::string& text);
    void AddInputChangeForProcessing(int index, double value);
    void AddInputChangeForGUI(int index, double value);
    SPluginState GetState();
    // False when the block was refused and the plug-in was left as it was.
    bool SetState(const void* data, uint32_t size);
    // Whether the plug-in's own state sets its parameter values on a restore
    // (a VST 2 plug-in without chunks has none: the AAX values are its state).
    bool StateHoldsParameterValues();

    // --- Main thread, from the editor view bridge. --------------------------
    // Touches the plug-in's editor and the host's view container only.
    void QuitGUI();
    void CreateGUI(AAX_IViewContainer* container);
    SViewSize GetViewSize();

    // --- Main thread, from the host's idle timer. ---------------------------
    // The editor's idle work and its size requests.
    int32_t TimerWakeup();
    // Applies a sample-rate change that processing has seen, with processing
    // held off meanwhile (the audio thread is never made to wait).
    void ApplyPendingSettings();

    // --- Main thread, from the host's notifications. ----------------------
    // Whether buffers are now rendered offline; STANDARD tells the plug-in
    // (it may set up again, with processing held off meanwhile).
    void SetOffline(bool offline);

    // --- Main thread: what the host compensates. --------------------------
    // The plug-in's latency in samples, as it last declared it (STANDARD;
    // CLASSIC reports none). Cheap enough for every timer wake-up: VST 2
    // reads initialDelay, VST 3 gives what it read when the component was
    // last switched on.
    int32_t GetLatency();
    // The plug-in's tail (STANDARD; CLASSIC never asks: unknown).
    SPluginTail GetTail();
    // Where each output bus of the plug-in plays, for the log and the status
    // block; empty where the format has no buses (VST 2 fills its outputs in
    // order) or CLASSIC plays the main buses only.
    std::vector<SOutputRoute> GetOutputRoutes();

    // --- Real-time thread: never blocks, never allocates. -------------------
    // One buffer, as the front end read it from the AAX context. A failure
    // here is not caught: the real-time callback ends the buffer for every
    // instance (its catch formats a line only on that path).
    void Process(const CProcessBlock& block)
    {
        MV_REAL_TIME("IFakeHost::Process");
        // STANDARD hosts flush denormals around the plug-in; CLASSIC never
        // did, and pays nothing for the scope.
        if (IsStandard()) {
            const CDenormalScope denormals(true);
            DoProcess(block);
        } else {
            DoProcess(block);
        }
    }

    EHostMode GetHostMode() const { return mHostMode; }
    // Who hears of the plug-in's own edits (set before Init).
    void SetEditListener(IPluginEditListener* listener) { mEditListener = listener; }

protected:
    bool IsStandard() const { return mHostMode == EHostMode::kStandard; }
    // The AAX host's sample rate, or fallback while there is no controller.
    double HostSampleRate(double fallback) const
    {
        AAX_CSampleRate rate = 0.0f;
        if (const AAX_IController* controller = mEffectParameters.Controller())
            controller->GetSampleRate(&rate);
        return rate > 0.0f ? static_cast<double>(rate) : fallback;
    }

    IPluginEditListener* mEditListener = nullptr;

private:
    virtual bool DoInit() = 0;
    virtual void DoSetup() = 0;
    virtual void DoQuit() = 0;
    virtual std::string DoGetLoadError() const { return std::string(); }
    virtual std::string DoGetPluginVendor() = 0;
    virtual std::string DoGetPluginVersion() = 0;
    virtual int32_t DoGetPluginProductUniqueID() = 0;
    virtual int DoGetParameterCount() = 0;
    virtual SParameterInfo DoGetParameterInfo(int index) = 0;
    virtual std::optional<double> DoGetParameterValue(int /*index*/) { return std::nullopt; }
    virtual std::optional<std::string> DoGetParameterText(int /*index*/, double /*value*/) { return std::nullopt; }
    virtual std::optional<double> DoGetParameterValueFromText(int /*index*/, const std::string& /*text*/)
    {
        return std::nullopt;
    }
    virtual void DoAddInputChangeForProcessing(int index, double value) = 0;
    virtual void DoAddInputChangeForGUI(int index, double value) = 0;
    virtual SPluginState DoGetState() = 0;
    virtual bool DoSetState(const void* data, uint32_t size) = 0;
    virtual bool DoStateHoldsParameterValues() { return true; }
    virtual void DoQuitGUI() = 0;
    virtual void DoCreateGUI(AAX_IViewContainer* container) = 0;
    virtual SViewSize DoGetViewSize() = 0;
    virtual int32_t DoTimerWakeup() { return 0; }
    virtual void DoApplyPendingSettings() {}
    virtual void DoSetOffline(bool /*offline*/) {}
    virtual int32_t DoGetLatency() { return 0; }
    virtual SPluginTail DoGetTail() { return SPluginTail(); }
    virtual std::vector<SOutputRoute> DoGetOutputRoutes() { return {}; }
    virtual void DoProcess(const CProcessBlock& block) = 0;

    AAX_CEffectParameters& mEffectParameters;
    const EHostMode mHostMode;
};
