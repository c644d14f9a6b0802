#include "TavrionVoice.h"

#include <algorithm>
#include <cmath>

namespace Tavrion {
namespace {

// Polynomial correction around a waveform step: removes most of the aliasing
// of a naive discontinuity at little cost.
double PolyBlep(double t, double dt)
{
    if (t < dt) {
        t /= dt;
        return t + t - t * t - 1.0;
    }
    if (t > 1.0 - dt) {
        t = (t - 1.0) / dt;
        return t * t + t + t + 1.0;
    }
    return 0.0;
}

}  // namespace

void CVoice::Start(int note, int velocity, int channel, uint64_t age, const VoiceSettings& settings)
{
    mNote = note;
    mChannel = channel;
    mAge = age;
    mVelocityGain = static_cast<float>(velocity) / 127.0f;
    const double frequency = 440.0 * std::pow(2.0, (note - 69) / 12.0);
    mPhaseIncrement = std::min(frequency / settings.sampleRate, 0.5);
    // Fixed start phase and cleared filter: the same notes always render the same.
    mPhase = 0.0;
    mFilterState = 0.0f;
    mEnvelope = 0.0f;
    mStage = kAttacking;
}

void CVoice::Release()
{
    if (mStage == kIdle || mStage == kReleasing)
        return;
    mStage = kReleasing;
    mReleaseStep = 0.0f;
}

float CVoice::NextEnvelope(const VoiceSettings& settings)
{
    const float rate = static_cast<float>(settings.sampleRate);
    switch (mStage) {
    case kAttacking:
        mEnvelope += 1.0f / std::max(1.0f, settings.attackSeconds * rate);
        if (mEnvelope >= 1.0f) {
            mEnvelope = 1.0f;
            mStage = kDecaying;
        }
        break;
    case kDecaying:
        mEnvelope -= (1.0f - settings.sustainLevel) / std::max(1.0f, settings.decaySeconds * rate);
        if (mEnvelope <= settings.sustainLevel) {
            mEnvelope = settings.sustainLevel;
            mStage = kSustaining;
        }
        break;
    case kSustaining:
        mEnvelope = settings.sustainLevel;
        break;
    case kReleasing:
        // Linear fall from wherever the release began, over the release time.
        if (mReleaseStep == 0.0f)
            mReleaseStep = std::max(mEnvelope, 1e-6f) / std::max(1.0f, settings.releaseSeconds * rate);
        mEnvelope -= mReleaseStep;
        if (mEnvelope <= 0.0f) {
            mEnvelope = 0.0f;
            mStage = kIdle;
        }
        break;
    case kIdle:
        mEnvelope = 0.0f;
        break;
    }
    return mEnvelope;
}

float CVoice::Render(const VoiceSettings& settings)
{
    if (mStage == kIdle)
        return 0.0f;
    double oscillator;
    if (settings.square) {
        oscillator = mPhase < 0.5 ? 1.0 : -1.0;
        oscillator += PolyBlep(mPhase, mPhaseIncrement);
        oscillator -= PolyBlep(std::fmod(mPhase + 0.5, 1.0), mPhaseIncrement);
    } else {
        oscillator = 2.0 * mPhase - 1.0 - PolyBlep(mPhase, mPhaseIncrement);
    }
    mPhase += mPhaseIncrement;
    if (mPhase >= 1.0)
        mPhase -= 1.0;

    mFilterState += settings.filterCoefficient * (static_cast<float>(oscillator) - mFilterState);
    return mFilterState * NextEnvelope(settings) * mVelocityGain;
}

}  // namespace Tavrion
