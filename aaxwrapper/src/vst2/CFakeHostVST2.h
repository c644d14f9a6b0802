// The VST 2 fake host: creates one effect from a plug-in file, answers its
// calls to the host, and translates between the AAX side and the effect.
#pragma once

#include <pthread.h>

#include <atomic>
#include <string>
#include <vector>

#include "ProcessGate.h"
#include "S_Alg_Context.h"
#include "fakehost/IFakeHost.h"
#include "vst2/CVST2PluginLoader.h"
#include "vst2/VstInterface.h"

class AAX_CEffectParameters;
class AAX_IViewContainer;

class CFakeHostVST2 : public IFakeHost {
public:
    // Bytes added to the effect's chunk size in GetState and taken off again in
    // SetState; both sides must use this one constant.
    static constexpr unsigned int kStateMargin = sizeof(void*) == 8 ? 60 : 58;
    static constexpr int kTextBufferSize = 256;
    // Channels every context record carries: inputs, and main pair plus stems.
    static constexpr int kHostInputChannels = kAlgBypassChannels;
    static constexpr int kHostOutputChannels = 2 + 2 * kNumOutputStems;
    // STANDARD: the most MIDI events handed over in one effProcessEvents.
    static constexpr int kMaxEventsPerBuffer = 1024;
    static constexpr double kDefaultSampleRate = 44100.0;

    CFakeHostVST2(AAX_CEffectParameters& owner, std::string& path, EHostMode mode = EHostMode::kClassic);
    ~CFakeHostVST2() override;
    CFakeHostVST2(const CFakeHostVST2&) = delete;
    CFakeHostVST2& operator=(const CFakeHostVST2&) = delete;

    bool Init() override;
    void Setup() override;
    void Quit() override;
    std::string GetLoadError() const override { return mLoadError; }
    void ApplyPendingSettings() override;
    std::string GetPluginVendor() override;
    std::string GetPluginVersion() override;
    int32_t GetPluginProductUniqueID() override;
    int GetParameterCount() override;
    bool GetParameterInfo(int inParamIndex, std::string& outName, float& outDefault) override;
    bool GetParameterValue(int index, double& outValue) override;
    void Process(S_Alg_Context* context) override;
    void AddInputChangeForProcessing(int index, double value) override;
    void AddInputChangeForGUI(int index, double value) override;
    void QuitGUI() override;
    void CreateGUI(AAX_IViewContainer* container) override;
    void GetViewSize(float& outWidth, float& outHeight) override;
    int32_t TimerWakeup() override;
    bool GetState(unsigned int* outSize, void* outpData) override;
    bool SetState(unsigned int inSize, void* inpData) override;
    bool StateHoldsParameterValues() override { return effect != nullptr && (effect->flags & effFlagsProgramChunks) != 0; }

    // The callback handed to the effect's entry function.
    static VstIntPtr staticHostCallback(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                        VstIntPtr value, void* ptr, float opt);
    VstIntPtr VstCallback(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);

    AEffect* GetEffect() const { return effect; }

private:
    VstIntPtr Dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0,
                       void* ptr = nullptr, float opt = 0.0f);
    // CLASSIC: a new host rate restarts the effect before the buffer.
    void ApplyContextRate(S_Alg_Context* context);
    // The time info is filled from the transport only when the effect asks
    // for it (audioMasterGetTime) from the processing thread, once per buffer
    // or slice: an effect that never asks costs no transport calls.
    void MarkTimeInfoStale(S_Alg_Context* context, int32_t start)
    {
        currentContext = context;
        mTimeStart = start;
        mTimeStale = true;
        mProcessThread.store(pthread_self(), std::memory_order_relaxed);
    }
    void FillTimeInfo();
    void PushInputEvents(const AAX_CMidiStream& stream);
    VstIntPtr StandardCallback(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt, bool& handled);

    // STANDARD: the effect is told the rate and block size on the main thread
    // only; processing notes a rate it has not been set up for.
    void Configure(double sampleRate);
    void ProcessStandard(S_Alg_Context* context);
    void ProcessSlice(S_Alg_Context* context, int32_t start, int32_t frames);
    void PushSliceEvents(const AAX_CMidiStream& stream, int32_t start, int32_t frames, bool lastSlice);
    VstIntPtr ForwardOutputEvents(void* ptr);
    VstIntPtr SizeWindow(VstInt32 width, VstIntPtr height);

    CVST2PluginLoader loader;
    AEffect* effect = nullptr;
    VstTimeInfo timeInfo{};
    VstEvents events{};
    VstMidiEvent* midiEvent = nullptr;
    AAX_IViewContainer* viewContainer = nullptr;
    bool needsResize = true;
    S_Alg_Context* currentContext = nullptr;
    // Time info owed for the current buffer or slice (processing thread only).
    std::atomic<pthread_t> mProcessThread{};
    bool mTimeStale = false;
    int32_t mTimeStart = 0;
    // False when the effect declares more channels than the host's context
    // carries. CLASSIC then does not process it rather than let it run past
    // the arrays; STANDARD gives it every channel it declares (see below).
    bool mChannelsFit = true;
    // STANDARD, more channels than the context: the context's channels, then
    // scratch buffers of the largest block made at Init (silence in, output
    // dropped). The pointer arrays are refilled per call, nothing allocated.
    void MakeWideChannels();
    void PointWideChannels(S_Alg_Context* context, int32_t start, int32_t frames, float**& inputs, float**& outputs);
    std::vector<float> mScratch;
    std::vector<float*> mWideInputs;
    std::vector<float*> mWideOutputs;
    static constexpr int kMaxWideChannels = 256;

    void CreateEffect(const CVST2PluginLoader::EntryFunction& entry);

    std::string mLoadError;
    std::string mPath;
    // The host whose effect's entry function is running (main thread only):
    // it answers what the effect asks before it knows its host.
    static thread_local CFakeHostVST2* sCreating;
    // STANDARD state.
    CVST2PluginLoader::EntryFunction mEntry;  // until Init creates the effect
    double mSampleRate = kDefaultSampleRate;        // what the effect was set up with
    std::atomic<double> mPendingRate{0.0};          // a different rate processing saw; 0: none
    Morvane::CProcessGate mGate;
    std::vector<VstMidiEvent> mEventRecords;        // sized in Init
    std::vector<char> mEventList;                   // a VstEvents with kMaxEventsPerBuffer slots
    float* mSliceInputs[kHostInputChannels] = {};
    float* mSliceOutputs[kHostOutputChannels] = {};
};
