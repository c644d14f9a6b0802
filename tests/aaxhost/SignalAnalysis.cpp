#include "SignalAnalysis.h"

#include <algorithm>
#include <cmath>

namespace AAXHostTest {

namespace {
constexpr double kYinThreshold = 0.15;
}  // namespace

double Fundamental(const std::vector<float>& samples, double sampleRate, size_t begin, size_t end, double minHz,
                   double maxHz)
{
    end = std::min(end, samples.size());
    const size_t minLag = static_cast<size_t>(sampleRate / maxHz);
    const size_t maxLag = static_cast<size_t>(sampleRate / minHz) + 2;
    if (begin >= end || end - begin < 2 * maxLag || minLag < 2)
        return 0.0;
    const size_t window = end - begin - maxLag;
    std::vector<double> difference(maxLag + 1, 0.0);
    for (size_t lag = 1; lag <= maxLag; ++lag) {
        double sum = 0.0;
        for (size_t i = begin; i < begin + window; ++i) {
            const double d = static_cast<double>(samples[i]) - samples[i + lag];
            sum += d * d;
        }
        difference[lag] = sum;
    }
    // Cumulative mean normalised difference: the first dip under the
    // threshold is the period, not one of its multiples.
    std::vector<double> normalised(maxLag + 1, 1.0);
    double running = 0.0;
    for (size_t lag = 1; lag <= maxLag; ++lag) {
        running += difference[lag];
        normalised[lag] = running > 0.0 ? difference[lag] * static_cast<double>(lag) / running : 1.0;
    }
    size_t best = 0;
    for (size_t lag = minLag; lag < maxLag; ++lag) {
        if (normalised[lag] < kYinThreshold) {
            while (lag + 1 < maxLag && normalised[lag + 1] < normalised[lag])
                ++lag;
            best = lag;
            break;
        }
    }
    if (best == 0)
        return 0.0;
    const double a = normalised[best - 1], b = normalised[best], c = normalised[best + 1];
    const double denominator = a - 2.0 * b + c;
    const double shift = denominator != 0.0 ? 0.5 * (a - c) / denominator : 0.0;
    return sampleRate / (static_cast<double>(best) + shift);
}

double KeyFrequency(int key) { return 440.0 * std::pow(2.0, (key - 69) / 12.0); }

}  // namespace AAXHostTest
