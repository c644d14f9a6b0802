// The deterministic input signal aaxhost can feed to every input channel, so
// that pass-through (bypass) can be checked channel by channel.
#pragma once

#include <cmath>
#include <cstdint>

namespace AAXHost {

// Channel c carries a sine of 100 * (c + 1) Hz at a quarter of full scale,
// so that no two channels are alike.
inline float TestInputSample(int channel, int64_t sample, double sampleRate)
{
    const double kTwoPi = 6.283185307179586;
    const double t = static_cast<double>(sample) / sampleRate;
    return static_cast<float>(0.25 * std::sin(kTwoPi * 100.0 * (channel + 1) * t));
}

}  // namespace AAXHost
