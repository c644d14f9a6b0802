// The host's song position, shared by every instance of a render and read
// through both the ACF transport interface and the MIDI transport node.
#pragma once

#include <cstdint>

#include "AAX_ITransport.h"

namespace AAXHost {

struct STransportState {
    double tempo = 120.0;
    int32_t meterNumerator = 4;
    int32_t meterDenominator = 4;
    bool playing = true;
    double sampleRate = 48000.0;
    int64_t samplePosition = 0;  // start of the current buffer
    int64_t stoppedPosition = 0;  // where the song stays while the transport is stopped

    // What the transport reports: the buffer start while playing; a stopped
    // host keeps its cursor still however many buffers it processes.
    int64_t SongPosition() const { return playing ? samplePosition : stoppedPosition; }
    int64_t TickPosition() const;
};

// The transport a MIDI transport node hands out.
class CHostTransport final : public AAX_ITransport {
public:
    explicit CHostTransport(const STransportState& state) : mState(state) {}
    AAX_Result GetCurrentTempo(double* tempo) const override;
    AAX_Result GetCurrentMeter(int32_t* numerator, int32_t* denominator) const override;
    AAX_Result IsTransportPlaying(bool* playing) const override;
    AAX_Result GetCurrentTickPosition(int64_t* ticks) const override;
    AAX_Result GetCurrentLoopPosition(bool* looping, int64_t* start, int64_t* end) const override;
    AAX_Result GetCurrentNativeSampleLocation(int64_t* location) const override;

private:
    const STransportState& mState;
};

}  // namespace AAXHost
