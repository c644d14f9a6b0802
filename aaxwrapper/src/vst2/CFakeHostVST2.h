// The VST 2 fake host: creates one effect from a plug-in file, answers its
// calls to the host, and translates between the AAX side and the effect.
#pragma once

#include <pthread.h>

#include <atomic>
#include <map>
#include <string>
#include <vector>

#include "ProcessGate.h"
#include "fakehost/ProcessBlock.h"
#include "fakehost/IFakeHost.h"
#include "vst2/CVST2PluginLoader.h"
#include "vst2/VstInterface.h"

class AAX_CEffectParameters;
class AAX_IMIDINode;
class AAX_IViewContainer;

class CFakeHostVST2 : public IFakeHost {
public:
    // Bytes added to the effect's chunk size in GetState and taken off again in
    // SetState; both sides must use this one constant.
    static constexpr unsigned int kStateMargin = sizeof(void*) == 8 ? 60 : 58;
    static constexpr int kTextBufferSize = 256;
    // Channels every block carries: inputs, and main pair plus stems.
    static constexpr int kHostInputChannels = kBlockInputChannels;
    static constexpr int kHostOutputChannels = kBlockOutputChannels;
    // STANDARD: the most MIDI events handed over in one effProcessEvents.
    static constexpr int kMaxEventsPerBuffer = 1024;
    static constexpr double kDefaultSampleRate = 44100.0;

    CFakeHostVST2(AAX_CEffectParameters& owner, const std::string& path, EHostMode mode = EHostMode::kClassic);
    ~CFakeHostVST2() override;

    // The callback handed to the effect's entry function.
    static VstIntPtr staticHostCallback(AEffect* effect, VstInt32 opcode, VstInt32 index,
                                        VstIntPtr value, void* ptr, float opt);
    VstIntPtr VstCallback(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);

    AEffect* GetEffect() const { return effect; }

private:
    // Loading (CFakeHostVST2.cpp).
    bool DoInit() override;
    void DoSetup() override;
    void DoQuit() override;
    std::string DoGetLoadError() const override { return mLoadError; }
    void DoApplyPendingSettings() override;
    void DoSetOffline(bool offline) override { mOffline.store(offline, std::memory_order_relaxed); }
    int32_t DoGetLatency() override;
    SPluginTail DoGetTail() override;
    std::string DoGetPluginVendor() override;
    std::string DoGetPluginVersion() override;
    int32_t DoGetPluginProductUniqueID() override;
    // Parameters (CFakeHostVST2Parameters.cpp).
    int DoGetParameterCount() override;
    SParameterInfo DoGetParameterInfo(int index) override;
    std::optional<double> DoGetParameterValue(int index) override;
    std::optional<std::string> DoGetParameterText(int index, double value) override;
    std::optional<double> DoGetParameterValueFromText(int index, const std::string& text) override;
    void DoAddInputChangeForProcessing(int index, double value) override;
    void DoAddInputChangeForGUI(int index, double value) override;
    // State (CFakeHostVST2State.cpp).
    SPluginState DoGetState() override;
    bool DoSetState(const void* data, uint32_t size) override;
    bool DoStateHoldsParameterValues() override;
    // Editor (CFakeHostVST2Editor.cpp).
    void DoQuitGUI() override;
    void DoCreateGUI(AAX_IViewContainer* container) override;
    SViewSize DoGetViewSize() override;
    int32_t DoTimerWakeup() override;
    // Processing (CFakeHostVST2Process.cpp).
    void DoProcess(const CProcessBlock& block) override;

    VstIntPtr Dispatch(VstInt32 opcode, VstInt32 index = 0, VstIntPtr value = 0,
                       void* ptr = nullptr, float opt = 0.0f);
    void CreateEffect(const CVST2PluginLoader::EntryFunction& entry);
    // CLASSIC: a new host rate restarts the effect before the buffer.
    void ApplyContextRate(const CProcessBlock& block);
    // The time info is filled from the block's transport only when the effect
    // asks for it (audioMasterGetTime) from the processing thread, once per
    // buffer or slice: an effect that never asks costs no transport calls.
    void BeginBlock(const CProcessBlock& block)
    {
        mBlock = &block;
        mMidiOut = block.MidiOut();
        mTimeStale = true;
        mProcessThread.store(pthread_self(), std::memory_order_relaxed);
    }
    void FillTimeInfo();
    void PushInputEvents(const CProcessBlock& block);
    VstIntPtr StandardCallback(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt, bool& handled);

    // STANDARD: the effect is told the rate and block size on the main thread
    // only; processing notes a rate it has not been set up for.
    void Configure(double sampleRate);
    // Inlined into the one process call they serve (defined and used in
    // the processing file only): each buffer pays no call for them.
    __attribute__((always_inline)) inline void ProcessStandard(const CProcessBlock& block);
    __attribute__((always_inline)) inline void ProcessSlice(const CProcessBlock& slice);
    void PushSliceEvents(const CProcessBlock& slice);
    void MakeEventList();
    VstIntPtr ForwardOutputEvents(void* ptr);
    VstIntPtr SizeWindow(VstInt32 width, VstIntPtr height);

    CVST2PluginLoader loader;
    AEffect* effect = nullptr;
    VstTimeInfo timeInfo{};
    VstEvents events{};
    VstMidiEvent* midiEvent = nullptr;
    AAX_IViewContainer* viewContainer = nullptr;
    bool needsResize = true;
    // The block being processed (processing thread, during the call only)
    // and the MIDI output node of the last one, which plug-ins that send
    // events outside their process call still reach.
    const CProcessBlock* mBlock = nullptr;
    AAX_IMIDINode* mMidiOut = nullptr;
    std::atomic<pthread_t> mProcessThread{};
    bool mTimeStale = false;  // the block's time info is still owed
    // False when the effect declares more channels than the host's context
    // carries. CLASSIC then does not process it rather than let it run past
    // the arrays; STANDARD gives it every channel it declares (see below).
    bool mChannelsFit = true;
    // STANDARD, more channels than the context: the context's channels, then
    // scratch buffers of the largest block made at Init (silence in, output
    // dropped). The pointer arrays are refilled per call, nothing allocated.
    void MakeWideChannels();
    void PointWideChannels(const CProcessBlock& slice, float**& inputs, float**& outputs);
    std::vector<float> mScratch;
    std::vector<float*> mWideInputs;
    std::vector<float*> mWideOutputs;
    static constexpr int kMaxWideChannels = 256;

    // STANDARD, main thread: the texts the effect has shown, by parameter and
    // value; the effect only describes the value it holds.
    std::string CurrentText(int index, float& value);
    std::vector<std::map<float, std::string>> mTextsSeen;
    static constexpr size_t kMaxTextsSeen = 1024;

    // STANDARD, main thread: an effect of two programs or more gets one more
    // parameter after its own, the program (CFakeHostVST2Programs.cpp).
    const std::vector<std::string>& ProgramNames();
    void ReadProgramNamesOneByOne();
    bool IsProgram(int index) { return IsStandard() && index == effect->numParams && !ProgramNames().empty(); }
    SParameterInfo ProgramInfo();
    double ProgramValue();
    void SetProgram(double value);
    std::optional<double> ProgramFromText(const std::string& text);
    std::vector<std::string> mProgramNames;
    bool mProgramsRead = false;

    std::string mLoadError;
    std::string mPath;
    // The host whose effect's entry function is running (main thread only):
    // it answers what the effect asks before it knows its host.
    static thread_local CFakeHostVST2* sCreating;
    // STANDARD state.
    CVST2PluginLoader::EntryFunction mEntry;  // until Init creates the effect
    double mSampleRate = kDefaultSampleRate;        // what the effect was set up with
    std::atomic<double> mPendingRate{0.0};          // a different rate processing saw; 0: none
    std::atomic<bool> mOffline{false};              // the host renders offline (STANDARD)
    Morvane::CProcessGate mGate;
    // The event records and the list pointing at them in order, made at
    // Init; the list's slots are put back in order after a buffer sorted them.
    std::vector<VstMidiEvent> mEventRecords;
    std::vector<char> mEventList;                   // a VstEvents with kMaxEventsPerBuffer slots
    bool mSlotsSorted = false;
};
