// Measurements on rendered audio: the fundamental of one note, enough to
// tell a wrong pitch.
#pragma once

#include <cstddef>
#include <vector>

namespace AAXHostTest {

// Fundamental frequency (Hz) of samples [begin, end) by the YIN difference
// method with parabolic refinement; 0 when no period is found.
double Fundamental(const std::vector<float>& samples, double sampleRate, size_t begin, size_t end,
                   double minHz = 40.0, double maxHz = 2000.0);

// 440 Hz at key 69, twelve keys per octave.
double KeyFrequency(int key);

}  // namespace AAXHostTest
