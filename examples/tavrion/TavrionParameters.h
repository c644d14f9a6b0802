// Tavrion's parameter table: index, name, unit, default and how a normalised
// value maps to the sound.
#pragma once

#include <cstddef>

namespace Tavrion {

enum ParameterIndex : int {
    kParamVolume = 0,
    kParamCutoff,
    kParamAttack,
    kParamRelease,
    kParamSustain,
    kParamWaveform,
    kNumParameters
};

struct ParameterInfo {
    const char* name;
    const char* label;
    float defaultValue;
};

extern const ParameterInfo kParameterInfo[kNumParameters];

// Mappings from normalised values; used by the engine and the display.
float VolumeGain(float normalized);      // linear gain, 0..1 (square law)
float CutoffHz(float normalized);        // 40 Hz .. 20 kHz, exponential
float AttackSeconds(float normalized);   // 1 ms .. ~2 s
float ReleaseSeconds(float normalized);  // 5 ms .. ~3 s
bool IsSquare(float normalized);         // below 0.5 saw, from 0.5 square

// Writes the value in the parameter's unit ("-3.1", "1200", "Saw").
void FormatParameterDisplay(int index, float normalized, char* text, size_t size);

}  // namespace Tavrion
