#include "AAXWrapper_BypassDelay.h"

#include <algorithm>

CBypassDelay::CBypassDelay(int32_t latency)
    : mLatency(std::max<int32_t>(latency, 1)),
      mRing(static_cast<size_t>(mLatency) * static_cast<size_t>(kAlgBypassChannels), 0.0f)
{
}

void CBypassDelay::Feed(const S_Alg_Context& context, int32_t frames) { Pass<false>(context, frames); }

void CBypassDelay::Run(const S_Alg_Context& context, int32_t frames) { Pass<true>(context, frames); }

// Sample by sample through each channel's ring: input and output may be one
// buffer, so each output sample is taken before its input sample is stored.
template <bool kWriteOutputs>
void CBypassDelay::Pass(const S_Alg_Context& context, int32_t frames)
{
    if (context.mInputs == nullptr || frames <= 0)
        return;
    int32_t end = mPosition;
    for (int channel = 0; channel < kAlgBypassChannels; ++channel) {
        const float* in = context.mInputs[channel];
        float* out = kWriteOutputs && context.mOutputs != nullptr ? context.mOutputs[channel] : nullptr;
        float* ring = mRing.data() + static_cast<size_t>(channel) * static_cast<size_t>(mLatency);
        int32_t position = mPosition;
        for (int32_t s = 0; s < frames; ++s) {
            const float delayed = ring[position];
            ring[position] = in != nullptr ? in[s] : 0.0f;
            if (out != nullptr)
                out[s] = delayed;
            if (++position == mLatency)
                position = 0;
        }
        end = position;
    }
    mPosition = end;
}
