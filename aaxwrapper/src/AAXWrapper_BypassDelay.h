// The master bypass of a plug-in with latency: the input delayed by that
// latency, so that switching bypass on or off keeps the track in time with
// the host's delay compensation. It hears every buffer, bypassed or not, so
// the delayed signal is there the moment bypass is switched on.
// Made on the main thread; Feed and Run allocate nothing.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "S_Alg_Context.h"

class CBypassDelay {
public:
    explicit CBypassDelay(int32_t latency);
    int32_t Latency() const { return mLatency; }

    // Real-time: the inputs join the delay line (a buffer the plug-in plays).
    void Feed(const S_Alg_Context& context, int32_t frames);
    // Real-time: every bypass pair's output is its input `latency` samples ago.
    void Run(const S_Alg_Context& context, int32_t frames);

private:
    template <bool kWriteOutputs>
    void Pass(const S_Alg_Context& context, int32_t frames);

    const int32_t mLatency;
    std::vector<float> mRing;  // kAlgBypassChannels rings of mLatency samples
    int32_t mPosition = 0;
};
