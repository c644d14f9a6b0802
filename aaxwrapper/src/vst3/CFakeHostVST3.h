// The VST 3 implementation of the fake host: loads a VST 3 bundle, creates
// and connects its processor and edit controller, and drives them for the
// AAX front end.
#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "pluginterfaces/base/ipluginbase.h"
#include "pluginterfaces/gui/iplugview.h"
#include "fakehost/IFakeHost.h"
#include "pluginterfaces/vst/vsttypes.h"

class CVST3Loader;
class CPlugFrame;

namespace Morvane {
class SharedObject;
namespace vst3 {
class EventList;
class ParameterChanges;
}  // namespace vst3
}  // namespace Morvane

class CFakeHostVST3 : public IFakeHost {
public:
    CFakeHostVST3(AAX_CEffectParameters& owner, const std::string& path, EHostMode mode = EHostMode::kClassic);
    ~CFakeHostVST3() override;

    // For diagnostics and tests: null before Init and after Quit.
    CVST3Loader* GetLoader() const { return mVst3Loader; }
    const Steinberg::PClassInfo& GetClassInfo() const { return mClassInfo; }

private:
    // Loading (CFakeHostVST3.cpp).
    bool DoInit() override;
    void DoSetup() override;
    void DoQuit() override;
    std::string DoGetLoadError() const override { return mLoadError; }
    void DoApplyPendingSettings() override;
    void DoSetOffline(bool offline) override;
    int32_t DoGetLatency() override;
    SPluginTail DoGetTail() override;
    std::vector<SOutputRoute> DoGetOutputRoutes() override;
    std::string DoGetPluginVendor() override;
    std::string DoGetPluginVersion() override;
    int32_t DoGetPluginProductUniqueID() override { return 0; }
    void ChooseAudioClass();
    // Parameters (CFakeHostVST3Parameters.cpp).
    int DoGetParameterCount() override;
    SParameterInfo DoGetParameterInfo(int index) override;
    std::optional<double> DoGetParameterValue(int index) override;
    std::optional<std::string> DoGetParameterText(int index, double value) override;
    std::optional<double> DoGetParameterValueFromText(int index, const std::string& text) override;
    void DoAddInputChangeForProcessing(int index, double value) override;
    void DoAddInputChangeForGUI(int index, double value) override;
    void ReadParameterIds();
    // Units and program lists (CFakeHostVST3Units.cpp), read with the IDs.
    void ReadGroups();
    void ReadProgramList();
    bool IsProgram(int index) const { return IsStandard() && index >= 0 && index == mProgramIndex; }
    Steinberg::Vst::ParamID ParamIdOf(int index) const;
    // State (CFakeHostVST3State.cpp).
    SPluginState DoGetState() override;
    bool DoSetState(const void* data, uint32_t size) override;
    // Editor (CFakeHostVST3Editor.cpp).
    void DoQuitGUI() override;
    void DoCreateGUI(AAX_IViewContainer* container) override;
    SViewSize DoGetViewSize() override;
    // Serves the editor's run loop (Linux) from the host's timer.
    int32_t DoTimerWakeup() override;
    // Linux: the X11 path of CreateGUI.
    void AttachX11(AAX_IViewContainer* container, void* parent);
    // Processing (CFakeHostVST3Process.cpp).
    void DoProcess(const CProcessBlock& block) override;
    // Inlined into the process call (defined and used in the processing
    // file only): each buffer pays no call for it.
    __attribute__((always_inline)) inline void ProcessSlice(const CProcessBlock& slice);
    void FillProcessContext(const CProcessBlock& slice);
    void ForwardOutputEvents(const CProcessBlock& slice);
    // The MIDI packets of one slice become events and parameter changes.
    void PushSliceEvents(const CProcessBlock& slice, Morvane::vst3::EventList* events,
                         Morvane::vst3::ParameterChanges& changes);
    // The usual block (the whole buffer, no MIDI debug lines): notes go
    // straight into the list, the rest through PushEvent.
    void PushWholeBufferEvents(const CProcessBlock& block, Morvane::vst3::EventList& events,
                               Morvane::vst3::ParameterChanges& changes);
    // One packet at `offset` in its slice: a note event, or a parameter change.
    void PushEvent(const AAX_CMidiPacket& packet, Steinberg::int32 offset, bool logMidi,
                   Morvane::vst3::EventList* events, Morvane::vst3::ParameterChanges& changes);
    // A MIDI message that drives a parameter (controller, program change,
    // after-touch, pitch bend), as the parameter and its normalised value.
    struct SMidiValue {
        Steinberg::int32 parameter = -1;
        double value = 0.0;
        bool logPoint = false;
    };
    bool MidiParameterValue(const AAX_CMidiPacket& packet, bool logMidi, SMidiValue& out);
    bool ProgramChangeValue(int channel, uint8_t program, SMidiValue& out);
    void SendMidiValue(const SMidiValue& point, uint32_t timestamp, bool logMidi,
                       Morvane::vst3::ParameterChanges& changes);

    std::unique_ptr<Morvane::SharedObject> mModule;
    Steinberg::IPluginFactory* mFactory = nullptr;
    // The reference a future loader will give back.
    bool mLoaderFactoryRef = false;
    CVST3Loader* mVst3Loader = nullptr;
    Steinberg::PClassInfo mClassInfo;
    Steinberg::PClassInfo2 mClassInfo2;
    Steinberg::IPlugView* mView = nullptr;
    CPlugFrame* mPlugFrame = nullptr;

    std::string mLoadError;
    // By index: the plug-in's parameter IDs and whether each is hidden.
    std::vector<Steinberg::Vst::ParamID> mParamIds;
    std::vector<bool> mParamHidden;
    // The unit each parameter's texts are in (UTF-8, may be empty).
    std::vector<std::string> mParamUnits;
    // By index: the ParameterInfo flags and unit, and the group the unit
    // names (STANDARD; empty at the top level).
    std::vector<Steinberg::int32> mParamFlags;
    std::vector<Steinberg::Vst::UnitID> mParamUnitIds;
    std::vector<std::string> mParamGroups;
    // STANDARD: the program-change parameter that has a program list, by
    // index (-1: none), and the list's program names.
    int mProgramIndex = -1;
    std::vector<std::string> mProgramNames;
    // STANDARD: a rate processing saw that the processor is not set up for.
    std::atomic<double> mPendingRate{0.0};
};
