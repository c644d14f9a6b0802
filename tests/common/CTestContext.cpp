#include "CTestContext.h"

#include <algorithm>

namespace TestSupport {

CTestContext::CTestContext(int32_t frames, float sampleRate)
    : mSampleRate(sampleRate), mFrames(frames), mInputBuffers(kInputs), mOutputBuffers(kOutputs)
{
    mTransportNode.mTransport = &mTransport;
    mContext.mBypass = &mBypass;
    mContext.mSampleRate = &mSampleRate;
    mContext.mMidiIn = &mMidiIn;
    mContext.mMidiOut = &mMidiOut;
    mContext.mMidiTransport = &mTransportNode;
    mContext.mBufferLength = &mFrames;
    SetFrames(frames);
}

void CTestContext::SetFrames(int32_t frames)
{
    mFrames = frames;
    mInputs.clear();
    mOutputs.clear();
    for (auto& buffer : mInputBuffers) {
        buffer.assign(static_cast<size_t>(frames), 0.0f);
        mInputs.push_back(buffer.data());
    }
    for (auto& buffer : mOutputBuffers) {
        buffer.assign(static_cast<size_t>(frames), 0.0f);
        mOutputs.push_back(buffer.data());
    }
    mContext.mInputs = mInputs.data();
    mContext.mOutputs = mOutputs.data();
}

void CTestContext::FillOutputs(float value)
{
    for (auto& buffer : mOutputBuffers)
        std::fill(buffer.begin(), buffer.end(), value);
}

bool CTestContext::OutputIsSilent(int channel) const
{
    const auto& buffer = Output(channel);
    return std::all_of(buffer.begin(), buffer.end(), [](float sample) { return sample == 0.0f; });
}

}  // namespace TestSupport
