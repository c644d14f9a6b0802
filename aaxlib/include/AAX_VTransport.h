// Plug-in side proxy of the host's transport.
#pragma once

#include "AAX_ITransport.h"

class AAX_VTransport : public AAX_ITransport {
public:
    explicit AAX_VTransport(IACFUnknown* pUnknown);
    ~AAX_VTransport() override;
    AAX_VTransport(const AAX_VTransport&) = delete;
    AAX_VTransport& operator=(const AAX_VTransport&) = delete;

    bool IsValid() const { return mITransport != nullptr; }
    AAX_Result GetCurrentTempo(double* outTempoBPM) const override;
    AAX_Result GetCurrentMeter(int32_t* outNumerator, int32_t* outDenominator) const override;
    AAX_Result IsTransportPlaying(bool* outIsPlaying) const override;
    AAX_Result GetCurrentTickPosition(int64_t* outTickPosition) const override;
    AAX_Result GetCurrentLoopPosition(bool* outLooping, int64_t* outLoopStartTick, int64_t* outLoopEndTick) const override;
    AAX_Result GetCurrentNativeSampleLocation(int64_t* outSampleLocation) const override;

private:
    AAX_IACFTransport* mITransport = nullptr;
};
