#include "TransportState.h"

#include <cmath>

#include "OutValue.h"

namespace AAXHost {

int64_t STransportState::TickPosition() const
{
    if (sampleRate <= 0.0)
        return 0;
    const double quarters = static_cast<double>(SongPosition()) / sampleRate * tempo / 60.0;
    return static_cast<int64_t>(std::llround(quarters * static_cast<double>(kAAX_TicksPerQuarter)));
}

AAX_Result CHostTransport::GetCurrentTempo(double* tempo) const { return WriteOut(tempo, mState.tempo); }

AAX_Result CHostTransport::GetCurrentMeter(int32_t* numerator, int32_t* denominator) const
{
    if (!numerator || !denominator)
        return AAX_ERROR_NULL_ARGUMENT;
    *numerator = mState.meterNumerator;
    *denominator = mState.meterDenominator;
    return AAX_SUCCESS;
}

AAX_Result CHostTransport::IsTransportPlaying(bool* playing) const { return WriteOut(playing, mState.playing); }

AAX_Result CHostTransport::GetCurrentTickPosition(int64_t* ticks) const
{
    return WriteOut(ticks, mState.TickPosition());
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
    return WriteOut(location, mState.SongPosition());
}

}  // namespace AAXHost
