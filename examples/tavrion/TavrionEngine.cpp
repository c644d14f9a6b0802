#include "TavrionEngine.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace Tavrion {
namespace {
constexpr float kVoiceMix = 0.25f;
constexpr float kDecaySeconds = 0.25f;
constexpr double kTwoPi = 6.283185307179586;
}  // namespace

CEngine::CEngine()
{
    for (int i = 0; i < kNumParameters; ++i)
        mParameters[i].store(kParameterInfo[i].defaultValue, std::memory_order_relaxed);
    UpdateSettings();
}

void CEngine::SetSampleRate(double rate)
{
    if (!(rate >= 1000.0 && rate <= 1.0e6))
        return;
    mSettings.sampleRate = rate;
    UpdateSettings();
}

void CEngine::SetParameter(int index, float normalized)
{
    if (index < 0 || index >= kNumParameters || !std::isfinite(normalized))
        return;
    mParameters[index].store(std::clamp(normalized, 0.0f, 1.0f), std::memory_order_relaxed);
    mParametersChanged.store(true, std::memory_order_release);
}

float CEngine::GetParameter(int index) const
{
    return index >= 0 && index < kNumParameters ? mParameters[index].load(std::memory_order_relaxed) : 0.0f;
}

void CEngine::CopyParameters(float (&values)[kNumParameters]) const
{
    for (int i = 0; i < kNumParameters; ++i)
        values[i] = mParameters[i].load(std::memory_order_relaxed);
}

void CEngine::SetAllParameters(const float (&values)[kNumParameters])
{
    for (int i = 0; i < kNumParameters; ++i)
        mParameters[i].store(std::isfinite(values[i]) ? std::clamp(values[i], 0.0f, 1.0f) : 0.0f,
                             std::memory_order_relaxed);
    mParametersChanged.store(true, std::memory_order_release);
}

void CEngine::UpdateSettings()
{
    float p[kNumParameters];
    CopyParameters(p);
    mGain = VolumeGain(p[kParamVolume]);
    mSettings.attackSeconds = AttackSeconds(p[kParamAttack]);
    mSettings.decaySeconds = kDecaySeconds;
    mSettings.sustainLevel = p[kParamSustain];
    mSettings.releaseSeconds = ReleaseSeconds(p[kParamRelease]);
    mSettings.square = IsSquare(p[kParamWaveform]);
    const double cutoff = std::min<double>(CutoffHz(p[kParamCutoff]), 0.45 * mSettings.sampleRate);
    mSettings.filterCoefficient = static_cast<float>(1.0 - std::exp(-kTwoPi * cutoff / mSettings.sampleRate));
}

void CEngine::QueueMidi(int32_t deltaFrames, const unsigned char* data)
{
    if (mQueued >= kMaxQueuedEvents)
        return;
    QueuedMidi& slot = mQueue[mQueued++];
    slot.deltaFrames = std::max<int32_t>(deltaFrames, 0);
    std::memcpy(slot.data, data, 3);
}

void CEngine::HandleMidi(const QueuedMidi& message)
{
    const int status = message.data[0] & 0xF0;
    const int channel = message.data[0] & 0x0F;
    const int data1 = message.data[1] & 0x7F;
    const int data2 = message.data[2] & 0x7F;
    switch (status) {
    case 0x90:
        if (data2 > 0)
            NoteOn(channel, data1, data2);
        else
            NoteOff(channel, data1);
        break;
    case 0x80: NoteOff(channel, data1); break;
    case 0xB0:
        if (data1 == 120)  // all sound off
            for (CVoice& voice : mVoices)
                if (voice.Channel() == channel)
                    voice.Kill();
        if (data1 == 123)  // all notes off
            for (CVoice& voice : mVoices)
                if (voice.Channel() == channel)
                    voice.Release();
        break;
    default: break;
    }
}

void CEngine::NoteOn(int channel, int note, int velocity)
{
    CVoice* chosen = nullptr;
    for (CVoice& voice : mVoices)
        if (!voice.IsActive()) {
            chosen = &voice;
            break;
        }
    if (chosen == nullptr) {
        // All busy: take the oldest, preferring one already released.
        for (CVoice& voice : mVoices) {
            if (chosen == nullptr || (!voice.IsHeld() && chosen->IsHeld()) ||
                (voice.IsHeld() == chosen->IsHeld() && voice.Age() < chosen->Age()))
                chosen = &voice;
        }
    }
    chosen->Start(note, velocity, channel, mNextAge++, mSettings);
}

void CEngine::NoteOff(int channel, int note)
{
    for (CVoice& voice : mVoices)
        if (voice.IsHeld() && voice.Channel() == channel && voice.Note() == note)
            voice.Release();
}

void CEngine::AllNotesOff()
{
    for (CVoice& voice : mVoices)
        voice.Kill();
    mQueued = 0;
}

int CEngine::ActiveVoices() const
{
    int count = 0;
    for (const CVoice& voice : mVoices)
        count += voice.IsActive() ? 1 : 0;
    return count;
}

void CEngine::Render(float** outputs, int32_t frames)
{
    if (frames < 0)
        frames = 0;
    if (mParametersChanged.exchange(false, std::memory_order_acquire))
        UpdateSettings();
    if (outputs != nullptr)
        for (int c = 0; c < kNumOutputs; ++c)
            if (outputs[c] != nullptr)
                std::fill(outputs[c], outputs[c] + frames, 0.0f);

    // Events arrive in time order from well-behaved hosts, so an insertion
    // sort is cheap; it is stable and, unlike std::stable_sort, allocates nothing.
    for (int i = 1; i < mQueued; ++i) {
        const QueuedMidi moving = mQueue[i];
        int j = i;
        for (; j > 0 && mQueue[j - 1].deltaFrames > moving.deltaFrames; --j)
            mQueue[j] = mQueue[j - 1];
        mQueue[j] = moving;
    }
    int nextEvent = 0;
    for (int32_t i = 0; i < frames; ++i) {
        while (nextEvent < mQueued && mQueue[nextEvent].deltaFrames <= i)
            HandleMidi(mQueue[nextEvent++]);
        if (outputs == nullptr)
            continue;
        for (CVoice& voice : mVoices) {
            if (!voice.IsActive())
                continue;
            const float sample = voice.Render(mSettings) * kVoiceMix * mGain;
            if (outputs[0] != nullptr)
                outputs[0][i] += sample;
            if (outputs[1] != nullptr)
                outputs[1][i] += sample;
            float* stemLeft = outputs[2 + 2 * voice.Channel()];
            float* stemRight = outputs[3 + 2 * voice.Channel()];
            if (stemLeft != nullptr)
                stemLeft[i] += sample;
            if (stemRight != nullptr)
                stemRight[i] += sample;
        }
    }
    // Events stamped past the end of the block still take effect.
    while (nextEvent < mQueued)
        HandleMidi(mQueue[nextEvent++]);
    mQueued = 0;
}

}  // namespace Tavrion
