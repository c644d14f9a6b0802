// The VST 3 implementation of the fake host: loads a VST 3 bundle, creates
// and connects its processor and edit controller, and drives them for the
// AAX front end.
#pragma once

#include <memory>
#include <string>

#include "pluginterfaces/base/ipluginbase.h"
#include "pluginterfaces/gui/iplugview.h"
#include "vst3/IFakeHost.h"

class AAX_IMIDINode;
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
    CFakeHostVST3(AAX_CEffectParameters& owner, std::string& path);
    ~CFakeHostVST3() override;

    CFakeHostVST3(const CFakeHostVST3&) = delete;
    CFakeHostVST3& operator=(const CFakeHostVST3&) = delete;

    void Init() override;
    void Setup() override;
    void Quit() override;
    std::string GetPluginVendor() override;
    std::string GetPluginVersion() override;
    int32_t GetPluginProductUniqueID() override { return 0; }
    int GetParameterCount() override;
    bool GetParameterInfo(int inParamIndex, std::string& outName, float& outDefault) override;
    void Process(S_Alg_Context* context) override;
    void AddInputChangeForProcessing(int index, double value) override;
    void AddInputChangeForGUI(int index, double value) override;
    void QuitGUI() override;
    void CreateGUI(AAX_IViewContainer* container) override;
    void GetViewSize(float& outWidth, float& outHeight) override;
    void GetState(unsigned int* outSize, void* outpData) override;
    void SetState(unsigned int inSize, void* inpData) override;

    // Real-time thread: the buffer's MIDI packets become events and changes.
    void PushInputEvents(AAX_IMIDINode* midiNode, Morvane::vst3::EventList* events,
                         Morvane::vst3::ParameterChanges& changes);

    // For diagnostics and tests: null before Init and after Quit.
    CVST3Loader* GetLoader() const { return mVst3Loader; }
    const Steinberg::PClassInfo& GetClassInfo() const { return mClassInfo; }

private:
    void ChooseAudioClass();

    std::unique_ptr<Morvane::SharedObject> mModule;
    Steinberg::IPluginFactory* mFactory = nullptr;
    // The reference a future loader will give back.
    bool mLoaderFactoryRef = false;
    CVST3Loader* mVst3Loader = nullptr;
    Steinberg::PClassInfo mClassInfo;
    Steinberg::PClassInfo2 mClassInfo2;
    Steinberg::IPlugView* mView = nullptr;
    CPlugFrame* mPlugFrame = nullptr;
};
