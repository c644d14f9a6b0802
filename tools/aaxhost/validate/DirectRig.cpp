#include "DirectRig.h"

#include <algorithm>
#include <cmath>

#include "AllocationCount.h"
#include "CheckProcess.h"
#include "TestSignal.h"

namespace AAXHost {

namespace {

constexpr unsigned char kChord[] = {48, 60, 64, 67};
constexpr size_t kMaxPackets = 64;

void AddNotes(std::vector<AAX_CMidiPacket>& packets, uint32_t offset, unsigned char status)
{
    for (unsigned char note : kChord) {
        if (packets.size() == kMaxPackets)
            return;
        AAX_CMidiPacket p{};
        p.mTimestamp = offset;
        p.mLength = 3;
        p.mData[0] = status;
        p.mData[1] = note;
        p.mData[2] = status == 0x90 ? 100 : 0;
        packets.push_back(p);
    }
}

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
    mPackets.clear();
    if (frames > 0) {
        const int64_t period = std::max<int64_t>(2, static_cast<int64_t>(0.3 * mSetup.sampleRate));
        for (int64_t s = mPosition; s < mPosition + frames; ++s) {
            const int64_t phase = s % period;
            if (phase == 0)
                AddNotes(mPackets, static_cast<uint32_t>(s - mPosition), 0x90);
            else if (phase == period / 2)
                AddNotes(mPackets, static_cast<uint32_t>(s - mPosition), 0x80);
        }
    }
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
