#include "TransportState.h"

#include <cmath>

namespace AAXHost {

int64_t STransportState::TickPosition() const
{
    if (sampleRate <= 0.0)
        return 0;
    const double quarters = static_cast<double>(SongPosition()) / sampleRate * tempo / 60.0;
    return static_cast<int64_t>(std::llround(quarters * static_cast<double>(kAAX_TicksPerQuarter)));
}

AAX_Result CHostTransport::GetCurrentTempo(double* tempo) const
{
    if (!tempo)
        return AAX_ERROR_NULL_ARGUMENT;
    *tempo = mState.tempo;
    return AAX_SUCCESS;
}

AAX_Result CHostTransport::GetCurrentMeter(int32_t* numerator, int32_t* denominator) const
{
    if (!numerator || !denominator)
        return AAX_ERROR_NULL_ARGUMENT;
    *numerator = mState.meterNumerator;
    *denominator = mState.meterDenominator;
    return AAX_SUCCESS;
}

AAX_Result CHostTransport::IsTransportPlaying(bool* playing) const
{
    if (!playing)
        return AAX_ERROR_NULL_ARGUMENT;
    *playing = mState.playing;
    return AAX_SUCCESS;
}

AAX_Result CHostTransport::GetCurrentTickPosition(int64_t* ticks) const
{
    if (!ticks)
        return AAX_ERROR_NULL_ARGUMENT;
    *ticks = mState.TickPosition();
    return AAX_SUCCESS;
}

AAX_Result CHostTransport::GetCurrentLoopPosition(bool* looping, int64_t* start, int64_t* end) const
{
    if (!looping || !start || !end)
        return AAX_ERROR_NULL_ARGUMENT;
    *looping = false;
    *start = 0;
    *end = 0;
    return AAX_SUCCESS;
}

AAX_Result CHostTransport::GetCurrentNativeSampleLocation(int64_t* location) const
{
    if (!location)
        return AAX_ERROR_NULL_ARGUMENT;
    *location = mState.SongPosition();
    return AAX_SUCCESS;
}

}  // namespace AAXHost
