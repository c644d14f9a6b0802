#include "HostController.h"

#include <cstdio>
#include <cstring>

#include "OutValue.h"

namespace AAXHost {

namespace {
// A plug-in that answers an update with another set request would otherwise
// recurse without end.
constexpr int kMaxAnswerDepth = 8;

std::string Text(const char* s) { return s ? std::string(s) : std::string(); }
}  // namespace

CHostController::CHostController(std::string effectID, float sampleRate, int32_t inputStem, int32_t outputStem,
                                 const STransportState& transport)
    : mEffectID(std::move(effectID)), mSampleRate(sampleRate), mInputStem(inputStem), mOutputStem(outputStem),
      mTransport(transport), mTransportView(transport)
{
}

ACFRESULT CHostController::AnswerQuery(const acfIID& iid, void** out)
{
    if (iid == IID_IACFUnknown || iid == IID_IAAXControllerV1)
        return AnswerInterface<AAX_IACFController>(this, out);
    if (iid == IID_IAAXAutomationDelegateV1)
        return AnswerInterface<AAX_IACFAutomationDelegate>(this, out);
    if (iid == IID_IAAXTransportV1)
        return AnswerInterface<AAX_IACFTransport>(this, out);
    return ACF_E_NOINTERFACE;
}

AAX_Result CHostController::GetEffectID(char* outEffectID, uint32_t bufferSize) const
{
    if (!outEffectID || bufferSize == 0)
        return AAX_ERROR_NULL_ARGUMENT;
    if (mEffectID.size() + 1 > bufferSize)
        return AAX_ERROR_ARGUMENT_BUFFER_OVERFLOW;
    std::memcpy(outEffectID, mEffectID.c_str(), mEffectID.size() + 1);
    return AAX_SUCCESS;
}

AAX_Result CHostController::GetSampleRate(AAX_CSampleRate* rate) const { return WriteOut(rate, mSampleRate); }

AAX_Result CHostController::GetInputStemFormat(int32_t* format) const { return WriteOut(format, mInputStem); }

AAX_Result CHostController::GetOutputStemFormat(int32_t* format) const { return WriteOut(format, mOutputStem); }

AAX_Result CHostController::GetSignalLatency(int32_t* samples) const { return WriteOut(samples, mLatency); }

AAX_Result CHostController::SetSignalLatency(int32_t samples)
{
    mLatency = samples;
    mLatencies.push_back(samples);
    return AAX_SUCCESS;
}

AAX_Result CHostController::PostPacket(AAX_CFieldIndex field, const void* payload, uint32_t size)
{
    if (!payload && size)
        return AAX_ERROR_NULL_ARGUMENT;
    SPostedPacket p;
    p.field = field;
    p.payload.assign(static_cast<const uint8_t*>(payload), static_cast<const uint8_t*>(payload) + size);
    mPackets.push_back(std::move(p));
    return AAX_SUCCESS;
}

AAX_Result CHostController::SendNotification(AAX_CTypeID, const void*, uint32_t)
{
    return AAX_SUCCESS;
}

void CHostController::Record(const char* kind, AAX_CParamID id, double value) const
{
    if (!mRecordAutomation)
        return;
    mAutomation.push_back({kind, Text(id), value, mTransport.samplePosition, mHostIsSetting});
}

AAX_Result CHostController::RegisterParameter(AAX_CParamID id)
{
    Record("register", id, 0.0);
    return AAX_SUCCESS;
}

AAX_Result CHostController::UnregisterParameter(AAX_CParamID id)
{
    Record("unregister", id, 0.0);
    return AAX_SUCCESS;
}

AAX_Result CHostController::PostSetValueRequest(AAX_CParamID id, double value) const
{
    if (!id)
        return AAX_ERROR_NULL_ARGUMENT;
    Record("set", id, value);
    if (!mEffect || mAnswerDepth >= kMaxAnswerDepth)
        return AAX_SUCCESS;
    ++mAnswerDepth;
    const AAX_Result r = mEffect->UpdateParameterNormalizedValue(id, value, AAX_eUpdateSource_Parameter);
    --mAnswerDepth;
    return r;
}

AAX_Result CHostController::PostCurrentValue(AAX_CParamID id, double value) const
{
    Record("current", id, value);
    return AAX_SUCCESS;
}

AAX_Result CHostController::PostTouchRequest(AAX_CParamID id)
{
    if (!id)
        return AAX_ERROR_NULL_ARGUMENT;
    Record("touch", id, 0.0);
    mTouched[id] = true;
    return AAX_SUCCESS;
}

AAX_Result CHostController::PostReleaseRequest(AAX_CParamID id)
{
    if (!id)
        return AAX_ERROR_NULL_ARGUMENT;
    Record("release", id, 0.0);
    mTouched[id] = false;
    return AAX_SUCCESS;
}

AAX_Result CHostController::GetTouchState(AAX_CParamID id, AAX_CBoolean* touched)
{
    if (!id || !touched)
        return AAX_ERROR_NULL_ARGUMENT;
    const auto it = mTouched.find(id);
    *touched = (it != mTouched.end() && it->second) ? 1 : 0;
    return AAX_SUCCESS;
}

AAX_Result CHostController::GetCurrentTempo(double* tempo) const { return mTransportView.GetCurrentTempo(tempo); }
AAX_Result CHostController::GetCurrentMeter(int32_t* numerator, int32_t* denominator) const
{
    return mTransportView.GetCurrentMeter(numerator, denominator);
}
AAX_Result CHostController::IsTransportPlaying(bool* playing) const { return mTransportView.IsTransportPlaying(playing); }
AAX_Result CHostController::GetCurrentTickPosition(int64_t* ticks) const { return mTransportView.GetCurrentTickPosition(ticks); }
AAX_Result CHostController::GetCurrentLoopPosition(bool* looping, int64_t* start, int64_t* end) const
{
    return mTransportView.GetCurrentLoopPosition(looping, start, end);
}
AAX_Result CHostController::GetCurrentNativeSampleLocation(int64_t* location) const
{
    return mTransportView.GetCurrentNativeSampleLocation(location);
}

std::vector<SPostedPacket> CHostController::TakePackets()
{
    std::vector<SPostedPacket> out;
    out.swap(mPackets);
    return out;
}

}  // namespace AAXHost
