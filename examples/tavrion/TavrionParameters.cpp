#include "TavrionParameters.h"

#include <cmath>
#include <cstdio>

namespace Tavrion {

const ParameterInfo kParameterInfo[kNumParameters] = {
    {"Volume", "dB", 0.7f},
    {"Cutoff", "Hz", 0.6f},
    {"Attack", "ms", 0.1f},
    {"Release", "ms", 0.3f},
    {"Sustain", "%", 0.8f},
    {"Waveform", "", 0.0f},
};

float VolumeGain(float normalized) { return normalized * normalized; }

float CutoffHz(float normalized) { return 40.0f * std::pow(500.0f, normalized); }

float AttackSeconds(float normalized) { return 0.001f + 2.0f * normalized * normalized; }

float ReleaseSeconds(float normalized) { return 0.005f + 3.0f * normalized * normalized; }

bool IsSquare(float normalized) { return normalized >= 0.5f; }

void FormatParameterDisplay(int index, float normalized, char* text, size_t size)
{
    switch (index) {
    case kParamVolume: {
        const float gain = VolumeGain(normalized);
        if (gain <= 0.0f)
            std::snprintf(text, size, "-inf");
        else
            std::snprintf(text, size, "%.1f", 20.0 * std::log10(gain));
        break;
    }
    case kParamCutoff: std::snprintf(text, size, "%.0f", CutoffHz(normalized)); break;
    case kParamAttack: std::snprintf(text, size, "%.0f", 1000.0f * AttackSeconds(normalized)); break;
    case kParamRelease: std::snprintf(text, size, "%.0f", 1000.0f * ReleaseSeconds(normalized)); break;
    case kParamSustain: std::snprintf(text, size, "%.0f", 100.0f * normalized); break;
    case kParamWaveform: std::snprintf(text, size, "%s", IsSquare(normalized) ? "Square" : "Saw"); break;
    default:
        if (size > 0)
            text[0] = '\0';
        break;
    }
}

}  // namespace Tavrion
