// One effect instance as a host runs it: the effect parameters object made
// by the plug-in's factory, its controller, and the algorithm context built
// from the registered fields, with the buffers behind it.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "AAX_IEffectParameters.h"
#include "HostController.h"
#include "HostMidiNode.h"
#include "PluginDescription.h"
#include "TransportState.h"
#include "WrapperStatus.h"

namespace AAXHost {

struct SInstanceConfig {
    double sampleRate = 48000.0;
    int32_t maxBlock = 512;
    int32_t inputChannels = 32;   // the bypass copy reads 32 inputs
    int32_t outputChannels = 34;  // main pair plus sixteen stereo stems
};

class CHostInstance {
public:
    CHostInstance(const SEffectInfo& effect, const SComponentInfo& component, const SInstanceConfig& config,
                  const STransportState& transport);
    ~CHostInstance();
    CHostInstance(const CHostInstance&) = delete;
    CHostInstance& operator=(const CHostInstance&) = delete;

    // Factory, QueryInterface, Initialize, then the context and its fields.
    bool Create(std::string& error);

    // Before a buffer: coefficients, posted packets into their fields, MIDI
    // input, buffer length, and the outputs the plug-in does not write
    // cleared (in the first buffer each output is marked instead).
    void PrepareBlock(int64_t blockStart, int32_t frames, const std::vector<AAX_CMidiPacket>& midiIn);
    // After the process call: outputs of the first buffer that the plug-in
    // left (partly) unwritten are cleared, and from then on cleared before
    // every buffer; the ones it wrote are left to it. A parameter set by the
    // host starts the finding out again.
    void FinishBlock();

    void* Context() { return mSlots.data(); }
    float* Input(int ch) { return mInputPtrs[static_cast<size_t>(ch)]; }
    const float* Output(int ch) const { return mOutputPtrs[static_cast<size_t>(ch)]; }
    int32_t OutputChannels() const { return mConfig.outputChannels; }
    int32_t InputChannels() const { return mConfig.inputChannels; }

    AAX_IACFEffectParameters* Effect() { return mEffect; }
    // Read at Create: a wrapper's host mode and the state of its plug-in.
    const SWrapperStatus& WrapperStatus() const { return mWrapperStatus; }
    CHostController* Controller() { return mController; }
    const CHostMidiNode* MidiOut() const;
    size_t MidiInCount() const { return mMidiInCount; }

    // Through the plug-in's own SetParameterNormalizedValue, so that the
    // request travels the automation path as a user's edit does.
    AAX_Result SetParameter(const std::string& id, double value);

    // The effect's GUI factory (null when none was registered).
    void* GuiFactory() const { return mEffectInfo.ProcPtr(kAAX_ProcPtrID_Create_EffectGUI); }

    // Releases the effect; safe to call twice.
    void Destroy();

private:
    struct SFieldBlock {
        AAX_CFieldIndex index;
        std::vector<uint8_t> bytes;
    };
    uint8_t* FieldBlock(AAX_CFieldIndex index);
    bool BuildContext(std::string& error);

    const SEffectInfo& mEffectInfo;
    const SComponentInfo& mComponent;
    SInstanceConfig mConfig;
    const STransportState& mTransport;
    CHostTransport mTransportView;

    AAX_IACFEffectParameters* mEffect = nullptr;  // one reference
    CHostController* mController = nullptr;        // one reference
    bool mInitialized = false;
    SWrapperStatus mWrapperStatus;

    std::vector<void*> mSlots;
    std::vector<std::unique_ptr<CHostMidiNode>> mMidiNodes;
    std::vector<SFieldBlock> mFieldBlocks;
    std::vector<float> mInputData, mOutputData;
    std::vector<float*> mInputPtrs, mOutputPtrs;
    enum class EOutputUse : char { kUnknown, kWritten, kCleared };
    static float OutputMark();
    std::vector<EOutputUse> mOutputUse;  // per output channel
    int32_t mMarkedFrames = 0;           // marked samples awaiting FinishBlock
    std::atomic<bool> mOutputsChanged{false};  // set by SetParameter, taken by PrepareBlock
    int32_t mBufferLength = 0;
    float mSampleRateField = 0.0f;
    int64_t mClock = 0;
    int64_t mBlockStart = 0;
    size_t mMidiInCount = 0;
};

}  // namespace AAXHost
