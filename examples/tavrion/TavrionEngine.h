// The instrument's sound engine: eight voices, MIDI handling, and a render
// that writes the main mix plus one stereo stem per MIDI channel.
#pragma once

#include <atomic>
#include <cstdint>

#include "TavrionParameters.h"
#include "TavrionVoice.h"

namespace Tavrion {

constexpr int kNumVoices = 8;
constexpr int kNumStems = 16;
// Main stereo pair, then a stereo pair for MIDI channels 1 to 16.
constexpr int kNumOutputs = 2 + 2 * kNumStems;
// Events beyond this many per block are dropped.
constexpr int kMaxQueuedEvents = 512;

struct QueuedMidi {
    int32_t deltaFrames;
    unsigned char data[3];
};

class CEngine {
public:
    CEngine();

    // Called by the host while processing is suspended.
    void SetSampleRate(double rate);
    double SampleRate() const { return mSettings.sampleRate; }
    // Parameters may be set and read from any thread at any time (hosts set
    // them from their main thread while the audio thread renders): values
    // are atomics, and Render takes them over at the start of a block.
    void SetParameter(int index, float normalized);
    float GetParameter(int index) const;
    void CopyParameters(float (&values)[kNumParameters]) const;
    void SetAllParameters(const float (&values)[kNumParameters]);

    // Collects events for the next Render; may be called several times per block.
    void QueueMidi(int32_t deltaFrames, const unsigned char* data);
    // Writes all kNumOutputs channels (null pointers are skipped).
    void Render(float** outputs, int32_t frames);
    void AllNotesOff();
    int ActiveVoices() const;

private:
    // Audio thread (or while suspended): settings from the parameters.
    void UpdateSettings();
    void HandleMidi(const QueuedMidi& message);
    void NoteOn(int channel, int note, int velocity);
    void NoteOff(int channel, int note);

    std::atomic<float> mParameters[kNumParameters];
    std::atomic<bool> mParametersChanged{true};
    VoiceSettings mSettings;
    float mGain = 0.0f;
    CVoice mVoices[kNumVoices];
    uint64_t mNextAge = 1;
    QueuedMidi mQueue[kMaxQueuedEvents];
    int mQueued = 0;
};

}  // namespace Tavrion
