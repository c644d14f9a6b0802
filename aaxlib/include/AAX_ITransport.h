// The transport family: tempo, meter, play state and positions.
// Tick positions count 960000 ticks per quarter note.
#pragma once

#include "ACFBase.h"
#include "AAX.h"

inline constexpr acfIID IID_IAAXTransportV1 = {0x4D72766E, 0x0203, 0x4141, {0x58, 0x54, 0x72, 0x6E, 0x73, 0x70, 0x56, 0x31}};

constexpr int64_t kAAX_TicksPerQuarter = 960000;

class AAX_IACFTransport : public IACFUnknown {
public:
    virtual AAX_Result GetCurrentTempo(double* outTempoBPM) const = 0;
    virtual AAX_Result GetCurrentMeter(int32_t* outNumerator, int32_t* outDenominator) const = 0;
    virtual AAX_Result IsTransportPlaying(bool* outIsPlaying) const = 0;
    virtual AAX_Result GetCurrentTickPosition(int64_t* outTickPosition) const = 0;
    virtual AAX_Result GetCurrentLoopPosition(bool* outLooping, int64_t* outLoopStartTick, int64_t* outLoopEndTick) const = 0;
    virtual AAX_Result GetCurrentNativeSampleLocation(int64_t* outSampleLocation) const = 0;

protected:
    ~AAX_IACFTransport() = default;
};

class AAX_ITransport {
public:
    virtual ~AAX_ITransport() = default;
    virtual AAX_Result GetCurrentTempo(double* outTempoBPM) const = 0;
    virtual AAX_Result GetCurrentMeter(int32_t* outNumerator, int32_t* outDenominator) const = 0;
    virtual AAX_Result IsTransportPlaying(bool* outIsPlaying) const = 0;
    virtual AAX_Result GetCurrentTickPosition(int64_t* outTickPosition) const = 0;
    virtual AAX_Result GetCurrentLoopPosition(bool* outLooping, int64_t* outLoopStartTick, int64_t* outLoopEndTick) const = 0;
    virtual AAX_Result GetCurrentNativeSampleLocation(int64_t* outSampleLocation) const = 0;
};
