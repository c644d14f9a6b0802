#include "DirectRig.h"

#include <algorithm>
#include <cmath>

#include "AllocationCount.h"
#include "CheckProcess.h"
#include "ChordSchedule.h"
#include "TestSignal.h"

namespace AAXHost {

namespace {

constexpr size_t kMaxPackets = 64;

}  // namespace

CDirectRig::CDirectRig(const AAXDirect::SDirectSetup& setup, double sampleRate, int maxBlock) : mSetup(setup)
{
    mSetup.sampleRate = sampleRate;
    mSetup.maxBlock = maxBlock;
    mPackets.reserve(kMaxPackets);
}

bool CDirectRig::Create(std::string& error)
{
    mPlugin = AAXDirect::MakeDirectPlugin(mSetup.path);
    if (!mPlugin->Open(mSetup, error))
        return false;
    mPlugin->Start();
    return true;
}

void CDirectRig::Process(int frames)
{
    ChordPacketsForBlock(mPackets, mPosition, frames, mSetup.sampleRate);
    for (int ch = 0; ch < mPlugin->InputChannels(); ++ch) {
        float* in = mPlugin->Input(ch);
        for (int i = 0; i < frames; ++i)
            in[i] = TestInputSample(ch, mPosition + i, mSetup.sampleRate);
    }
    AAXDirect::SDirectTransport transport;
    transport.samplePosition = mPosition;
    transport.quarterNotes = static_cast<double>(mPosition) / mSetup.sampleRate * transport.tempo / 60.0;
    mPlugin->Prepare(mPackets.data(), mPackets.size(), transport, frames);
    if (mCountAllocations)
        ArmAllocationCount(true);
    mPlugin->Process(frames);
    if (mCountAllocations)
        ArmAllocationCount(false);
    const int overrun = mPlugin->FirstOverrunOutput();
    if (overrun >= 0)
        throw CPluginOverrun("the plug-in wrote past the end of output channel " + std::to_string(overrun) + " (" +
                             std::to_string(frames) + " samples asked for)");
    for (int ch = 0; ch < mPlugin->OutputChannels(); ++ch) {
        const float* out = mPlugin->Output(ch);
        for (int i = 0; i < frames; ++i) {
            switch (std::fpclassify(out[i])) {
            case FP_NAN: ++mCounts.nan; break;
            case FP_INFINITE: ++mCounts.infinite; break;
            case FP_SUBNORMAL: ++mCounts.denormal; break;
            default: break;
            }
        }
        mCounts.samples += static_cast<uint64_t>(std::max(frames, 0));
    }
    mPosition += frames;
    CheckBeat();
}

}  // namespace AAXHost
