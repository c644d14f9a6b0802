#include "ProcessingRig.h"

#include <algorithm>
#include <cmath>

#include "AllocationCount.h"
#include "CheckProcess.h"
#include "ChordSchedule.h"
#include "RenderOutputs.h"
#include "TestSignal.h"

namespace AAXHost {

CProcessingRig::CProcessingRig(const SEffectInfo& effect, const SComponentInfo& component, double sampleRate,
                               int32_t maxBlock)
    : mSampleRate(sampleRate), mMaxBlock(maxBlock)
{
    mTransport.sampleRate = sampleRate;
    SInstanceConfig config;
    config.sampleRate = sampleRate;
    config.maxBlock = maxBlock;
    config.outputChannels = OutputChannelCount(component);
    mInstance = std::make_unique<CHostInstance>(effect, component, config, mTransport);
    mProcess = reinterpret_cast<AAX_CProcessProc>(component.processProcs.front().proc);
    mPackets.reserve(64);
}

CProcessingRig::~CProcessingRig() = default;

bool CProcessingRig::Create(std::string& error)
{
    if (!mInstance->Create(error))
        return false;
    mInstance->Controller()->SetRecordAutomation(false);
    return true;
}

// A chord struck every 300 ms and released half-way.
void CProcessingRig::Prepare(int32_t frames)
{
    mTransport.samplePosition = mPosition;
    mPackets.clear();
    if (mNotes)
        ChordPacketsForBlock(mPackets, mPosition, frames, mSampleRate);
    mInstance->PrepareBlock(mPosition, frames, mPackets);
    if (mTestInput)
        for (int ch = 0; ch < mInstance->InputChannels(); ++ch) {
            float* in = mInstance->Input(ch);
            for (int32_t i = 0; i < frames; ++i)
                in[i] = TestInputSample(ch, mPosition + i, mSampleRate);
        }
}

void CProcessingRig::Finish(int32_t frames)
{
    mInstance->FinishBlock();
    for (int ch = 0; ch < mInstance->OutputChannels(); ++ch) {
        const float* out = mInstance->Output(ch);
        for (int32_t i = 0; i < frames; ++i) {
            switch (std::fpclassify(out[i])) {
            case FP_NAN: ++mCounts.nan; break;
            case FP_INFINITE: ++mCounts.infinite; break;
            case FP_SUBNORMAL: ++mCounts.denormal; break;
            default: break;
            }
        }
        mCounts.samples += static_cast<uint64_t>(frames);
    }
    mPosition += frames;
    CheckBeat();
}

void CProcessingRig::Process(int32_t frames)
{
    Prepare(frames);
    void* context = mInstance->Context();
    if (mCountAllocations)
        ArmAllocationCount(true);
    mProcess(&context, &context + 1);
    if (mCountAllocations)
        ArmAllocationCount(false);
    Finish(frames);
}

void CProcessingRig::ProcessTogether(const std::vector<CProcessingRig*>& rigs, int32_t frames)
{
    if (rigs.empty())
        return;
    std::vector<void*> contexts;
    for (CProcessingRig* rig : rigs) {
        rig->Prepare(frames);
        contexts.push_back(rig->mInstance->Context());
    }
    rigs.front()->mProcess(contexts.data(), contexts.data() + contexts.size());
    for (CProcessingRig* rig : rigs)
        rig->Finish(frames);
}

float CProcessingRig::MainOutputDistanceFromInput(int32_t frames)
{
    // An effect that reported a latency plays its bypassed input as late,
    // as a host's delay compensation expects; the test signal says what that
    // input was.
    const int32_t latency = mTestInput ? std::max<int32_t>(0, mInstance->Controller()->Latency()) : 0;
    const int64_t start = mPosition - frames;
    float worst = 0.0f;
    for (int ch = 0; ch < 2; ++ch) {
        const float* out = mInstance->Output(ch);
        const float* in = mInstance->Input(ch);
        for (int32_t i = 0; i < frames; ++i) {
            const int64_t source = start + i - latency;
            const float expected =
                latency == 0 ? in[i] : source < 0 ? 0.0f : TestInputSample(ch, source, mSampleRate);
            worst = std::max(worst, std::fabs(out[i] - expected));
        }
    }
    return worst;
}

}  // namespace AAXHost
