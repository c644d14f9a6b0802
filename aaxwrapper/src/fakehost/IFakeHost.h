// The one abstract VST host through which the AAX front end drives the
// wrapped plug-in, whatever its format. Operations are grouped by the thread
// that may call them; the implementations check it (ThreadRole.h), so a
// main-thread operation reached from the audio thread stops a test run.
#pragma once

#include <cstdint>
#include <string>

#include "AAX_CEffectParameters.h"
#include "AAX_IController.h"
#include "fakehost/HostMode.h"
#include "fakehost/IPluginEditListener.h"

class AAX_IViewContainer;
struct S_Alg_Context;

// Catalogue of hosting failure texts, kept in this order.
extern const char* const _DicoException[11];

class IFakeHost {
public:
    explicit IFakeHost(AAX_CEffectParameters& owner, EHostMode mode = EHostMode::kClassic)
        : mEffectParameters(owner), mHostMode(mode)
    {
    }
    virtual ~IFakeHost() = default;

    // --- Main thread: life cycle, description, parameters, state. ---------
    // May allocate, lock the controller and wait for process calls to leave.
    // True when the plug-in objects exist; otherwise GetLoadError says why.
    virtual bool Init() = 0;
    virtual void Setup() = 0;
    virtual void Quit() = 0;
    virtual std::string GetLoadError() const { return std::string(); }
    virtual std::string GetPluginVendor() = 0;
    virtual std::string GetPluginVersion() = 0;
    virtual int32_t GetPluginProductUniqueID() = 0;
    virtual int GetParameterCount() = 0;
    virtual bool GetParameterInfo(int inParamIndex, std::string& outName, float& outDefault) = 0;
    // Whether parameter `index` becomes an AAX parameter, and the number its
    // AAX identifier is made of (the index, or the plug-in's own parameter
    // ID where the format has stable ones).
    virtual bool IsParameterPublished(int /*index*/) { return true; }
    virtual uint32_t GetParameterTag(int index) { return static_cast<uint32_t>(index); }
    // The parameter's present value, normalised; false when it cannot tell.
    virtual bool GetParameterValue(int /*index*/, double& /*outValue*/) { return false; }
    virtual void AddInputChangeForProcessing(int index, double value) = 0;
    virtual void AddInputChangeForGUI(int index, double value) = 0;
    // The plug-in's state: with outpData null only its size, else the state
    // itself into a block of *outSize bytes. False when the plug-in gave none
    // (the size is then still one the front end may publish), or when the
    // state is larger than the block: nothing is written then, and *outSize
    // says what it needs (a plug-in's state may change between two calls).
    virtual bool GetState(unsigned int* outSize, void* outpData) = 0;
    // False when the block was refused and the plug-in was left as it was.
    virtual bool SetState(unsigned int inSize, void* inpData) = 0;
    // Whether the plug-in's own state sets its parameter values on a restore
    // (a VST 2 plug-in without chunks has none: the AAX values are its state).
    virtual bool StateHoldsParameterValues() { return true; }

    // --- Main thread, from the editor view bridge. --------------------------
    // Touches the plug-in's editor and the host's view container only.
    virtual void QuitGUI() = 0;
    virtual void CreateGUI(AAX_IViewContainer* container) = 0;
    virtual void GetViewSize(float& outWidth, float& outHeight) = 0;

    // --- Main thread, from the host's idle timer. ---------------------------
    // The editor's idle work and its size requests.
    virtual int32_t TimerWakeup() { return 0; }
    // Applies a sample-rate change that processing has seen, with processing
    // held off meanwhile (the audio thread is never made to wait).
    virtual void ApplyPendingSettings() {}

    // --- Real-time thread: never blocks, never allocates. -------------------
    // Touches the processor, the buffers, the MIDI nodes and the transport;
    // the controller only where a host mode says so, marked in the code.
    virtual void Process(S_Alg_Context* context) = 0;

    EHostMode GetHostMode() const { return mHostMode; }
    // STANDARD: who hears of the plug-in's own edits (set before Init).
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

    AAX_CEffectParameters& mEffectParameters;
    const EHostMode mHostMode;
    IPluginEditListener* mEditListener = nullptr;
};
