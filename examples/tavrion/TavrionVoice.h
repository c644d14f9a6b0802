// One voice: a band-limited saw or square oscillator through a one-pole
// low-pass, shaped by an ADSR envelope.
#pragma once

#include <cstdint>

namespace Tavrion {

struct VoiceSettings {
    double sampleRate = 44100.0;
    float attackSeconds = 0.01f;
    float decaySeconds = 0.25f;
    float sustainLevel = 0.8f;
    float releaseSeconds = 0.2f;
    float filterCoefficient = 1.0f;  // one-pole smoothing factor in (0, 1]
    bool square = false;
};

class CVoice {
public:
    void Start(int note, int velocity, int channel, uint64_t age, const VoiceSettings& settings);
    void Release();
    void Kill() { mStage = kIdle; }

    bool IsActive() const { return mStage != kIdle; }
    bool IsHeld() const { return mStage != kIdle && mStage != kReleasing; }
    int Note() const { return mNote; }
    int Channel() const { return mChannel; }
    uint64_t Age() const { return mAge; }

    // Next output sample (mono); the voice goes idle at the end of its release.
    float Render(const VoiceSettings& settings);

private:
    enum Stage { kIdle, kAttacking, kDecaying, kSustaining, kReleasing };

    float NextEnvelope(const VoiceSettings& settings);

    Stage mStage = kIdle;
    int mNote = 0;
    int mChannel = 0;
    uint64_t mAge = 0;
    float mVelocityGain = 0.0f;
    double mPhase = 0.0;
    double mPhaseIncrement = 0.0;
    float mEnvelope = 0.0f;
    float mReleaseStep = 0.0f;
    float mFilterState = 0.0f;
};

}  // namespace Tavrion
