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
#include "S_Alg_Context.h"
#include "fakehost/IFakeHost.h"
#include "pluginterfaces/vst/vsttypes.h"

class AAX_IMIDINode;
struct AAX_CMidiStream;
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
    CFakeHostVST3(AAX_CEffectParameters& owner, std::string& path, EHostMode mode = EHostMode::kClassic);
    ~CFakeHostVST3() override;

    CFakeHostVST3(const CFakeHostVST3&) = delete;
    CFakeHostVST3& operator=(const CFakeHostVST3&) = delete;

    bool Init() override;
    void Setup() override;
    void Quit() override;
    std::string GetLoadError() const override { return mLoadError; }
    bool IsParameterPublished(int index) override;
    bool GetParameterValue(int index, double& outValue) override;
    uint32_t GetParameterTag(int index) override;
    void ApplyPendingSettings() override;
    std::string GetPluginVendor() override;
    std::string GetPluginVersion() override;
    int32_t GetPluginProductUniqueID() override { return 0; }
    int GetParameterCount() override;
    bool GetParameterInfo(int inParamIndex, std::string& outName, float& outDefault) override;
    void Process(S_Alg_Context* context) override;
    void AddInputChangeForProcessing(int index, double value) override;
    void AddInputChangeForGUI(int index, double value) override;
    void QuitGUI() override;
    // Serves the editor's run loop (Linux) from the host's timer.
    int32_t TimerWakeup() override;
    void CreateGUI(AAX_IViewContainer* container) override;
    void GetViewSize(float& outWidth, float& outHeight) override;
    bool GetState(unsigned int* outSize, void* outpData) override;
    bool SetState(unsigned int inSize, void* inpData) override;

    // Real-time thread: the MIDI packets of one slice [start, start + frames)
    // of the buffer, rebased to the slice, become events and changes; the
    // last slice also takes late stamps.
    void PushSliceEvents(const AAX_CMidiStream& stream, int32_t start, int32_t frames, bool lastSlice,
                         Morvane::vst3::EventList* events, Morvane::vst3::ParameterChanges& changes);

    // For diagnostics and tests: null before Init and after Quit.
    CVST3Loader* GetLoader() const { return mVst3Loader; }
    const Steinberg::PClassInfo& GetClassInfo() const { return mClassInfo; }

private:
    // Linux: the X11 path of CreateGUI.
    void AttachX11(AAX_IViewContainer* container, void* parent);
    void ChooseAudioClass();
    void ReadParameterIds();
    Steinberg::Vst::ParamID ParamIdOf(int index) const;
    void ProcessSlice(S_Alg_Context* context, int32_t start, int32_t frames, bool lastSlice);
    void FillProcessContext(S_Alg_Context* context, int32_t start);
    void ForwardOutputEvents(S_Alg_Context* context, int32_t start);
    // A MIDI message that drives a parameter (controller, program change,
    // after-touch, pitch bend), as the parameter and its normalised value.
    struct SMidiValue {
        Steinberg::int32 parameter = -1;
        double value = 0.0;
        bool logPoint = false;
    };
    bool MidiParameterValue(const AAX_CMidiPacket& packet, SMidiValue& out);
    bool ProgramChangeValue(int channel, uint8_t program, SMidiValue& out);
    void SendMidiValue(const SMidiValue& point, uint32_t timestamp, Morvane::vst3::ParameterChanges& changes);

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
    // STANDARD: a rate processing saw that the processor is not set up for.
    std::atomic<double> mPendingRate{0.0};
    // Channel pointers of one slice of a longer buffer.
    float* mSliceInputs[kAlgBypassChannels] = {};
    float* mSliceOutputs[2 + 2 * kNumOutputStems] = {};
};
