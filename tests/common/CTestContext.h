// One instance's context record with the host's buffers behind it, laid out
// as the host lays it out: 32 input and 34 output channels (main + stems).
#pragma once

#include <cstdint>
#include <vector>

#include "AaxHostDoubles.h"
#include "S_Alg_Context.h"
#include "fakehost/ProcessBlock.h"

namespace TestSupport {

class CTestContext {
public:
    static constexpr int kInputs = 32;
    static constexpr int kOutputs = 34;

    explicit CTestContext(int32_t frames = 64, float sampleRate = 48000.0f);
    CTestContext(const CTestContext&) = delete;
    CTestContext& operator=(const CTestContext&) = delete;

    S_Alg_Context* Context() { return &mContext; }
    // The buffer as the front end hands it to a fake host, read afresh.
    CProcessBlock Block() const { return CProcessBlock(mContext); }
    // Reallocates every channel at the new length, zeroed.
    void SetFrames(int32_t frames);
    void FillOutputs(float value);
    std::vector<float>& Input(int channel) { return mInputBuffers[static_cast<size_t>(channel)]; }
    const std::vector<float>& Output(int channel) const { return mOutputBuffers[static_cast<size_t>(channel)]; }
    bool OutputIsSilent(int channel) const;

    S_Alg_Context mContext{};
    int32_t mBypass = 0;
    AAX_CSampleRate mSampleRate;
    int32_t mFrames;
    CTestMidiNode mMidiIn;
    CTestMidiNode mMidiOut;
    CTestMidiNode mTransportNode;
    CTestTransport mTransport;

private:
    std::vector<std::vector<float>> mInputBuffers;
    std::vector<std::vector<float>> mOutputBuffers;
    std::vector<float*> mInputs;
    std::vector<float*> mOutputs;
};

}  // namespace TestSupport
