#include "AAX_VTransport.h"

AAX_VTransport::AAX_VTransport(IACFUnknown* pUnknown)
{
    void* p = nullptr;
    if (pUnknown != nullptr && pUnknown->QueryInterface(IID_IAAXTransportV1, &p) == ACF_OK) mITransport = static_cast<AAX_IACFTransport*>(p);
}

AAX_VTransport::~AAX_VTransport()
{
    if (mITransport != nullptr) mITransport->Release();
}

AAX_Result AAX_VTransport::GetCurrentTempo(double* outTempoBPM) const
{
    if (mITransport == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mITransport->GetCurrentTempo(outTempoBPM);
}

AAX_Result AAX_VTransport::GetCurrentMeter(int32_t* outNumerator, int32_t* outDenominator) const
{
    if (mITransport == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mITransport->GetCurrentMeter(outNumerator, outDenominator);
}

AAX_Result AAX_VTransport::IsTransportPlaying(bool* outIsPlaying) const
{
    if (mITransport == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mITransport->IsTransportPlaying(outIsPlaying);
}

AAX_Result AAX_VTransport::GetCurrentTickPosition(int64_t* outTickPosition) const
{
    if (mITransport == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mITransport->GetCurrentTickPosition(outTickPosition);
}

AAX_Result AAX_VTransport::GetCurrentLoopPosition(bool* outLooping, int64_t* outLoopStartTick, int64_t* outLoopEndTick) const
{
    if (mITransport == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mITransport->GetCurrentLoopPosition(outLooping, outLoopStartTick, outLoopEndTick);
}

AAX_Result AAX_VTransport::GetCurrentNativeSampleLocation(int64_t* outSampleLocation) const
{
    if (mITransport == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mITransport->GetCurrentNativeSampleLocation(outSampleLocation);
}
