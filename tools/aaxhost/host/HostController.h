// The controller object given to an effect's Initialize. One ACF object
// answers the controller, automation-delegate and transport interfaces of
// one instance: it queues the packets the plug-in posts for its algorithm,
// records the automation it asks for, and answers set-value requests the
// way a host does, by calling back UpdateParameterNormalizedValue.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "AAX_IAutomationDelegate.h"
#include "AAX_IController.h"
#include "AAX_IEffectParameters.h"
#include "AAX_ITransport.h"
#include "RefCount.h"
#include "TransportState.h"

namespace AAXHost {

struct SAutomationEvent {
    std::string kind;  // "touch", "set", "release", "current", "register", "unregister"
    std::string parameterID;
    double value = 0.0;
    int64_t samplePosition = 0;
    bool fromHost = false;  // made while the host itself was setting a parameter
};

struct SPostedPacket {
    AAX_CFieldIndex field = 0;
    std::vector<uint8_t> payload;
};

class CHostController final
    : public CHostUnknown<AAX_IACFController, AAX_IACFAutomationDelegate, AAX_IACFTransport> {
public:
    CHostController(std::string effectID, float sampleRate, int32_t inputStem, int32_t outputStem,
                    const STransportState& transport);

    // Controller
    AAX_Result GetEffectID(char* outEffectID, uint32_t bufferSize) const override;
    AAX_Result GetSampleRate(AAX_CSampleRate* rate) const override;
    AAX_Result GetInputStemFormat(int32_t* format) const override;
    AAX_Result GetOutputStemFormat(int32_t* format) const override;
    AAX_Result GetSignalLatency(int32_t* samples) const override;
    AAX_Result SetSignalLatency(int32_t samples) override;
    AAX_Result PostPacket(AAX_CFieldIndex field, const void* payload, uint32_t size) override;
    AAX_Result SendNotification(AAX_CTypeID type, const void* data, uint32_t size) override;

    // Automation delegate
    AAX_Result RegisterParameter(AAX_CParamID id) override;
    AAX_Result UnregisterParameter(AAX_CParamID id) override;
    AAX_Result PostSetValueRequest(AAX_CParamID id, double value) const override;
    AAX_Result PostCurrentValue(AAX_CParamID id, double value) const override;
    AAX_Result PostTouchRequest(AAX_CParamID id) override;
    AAX_Result PostReleaseRequest(AAX_CParamID id) override;
    AAX_Result GetTouchState(AAX_CParamID id, AAX_CBoolean* touched) override;

    // Transport
    AAX_Result GetCurrentTempo(double* tempo) const override;
    AAX_Result GetCurrentMeter(int32_t* numerator, int32_t* denominator) const override;
    AAX_Result IsTransportPlaying(bool* playing) const override;
    AAX_Result GetCurrentTickPosition(int64_t* ticks) const override;
    AAX_Result GetCurrentLoopPosition(bool* looping, int64_t* start, int64_t* end) const override;
    AAX_Result GetCurrentNativeSampleLocation(int64_t* location) const override;

    // Host side
    void SetEffect(AAX_IACFEffectParameters* effect) { mEffect = effect; }
    void SetHostIsSetting(bool on) { mHostIsSetting = on; }
    std::vector<SPostedPacket> TakePackets();
    const std::vector<SAutomationEvent>& Automation() const { return mAutomation; }
    // A render reports every automation event; a validator's long runs keep
    // none (the list would grow without bound).
    void SetRecordAutomation(bool on) { mRecordAutomation = on; }
    int32_t Latency() const { return mLatency; }
    // Every latency the effect reported, in order.
    const std::vector<int32_t>& Latencies() const { return mLatencies; }

private:
    ~CHostController() override = default;
    ACFRESULT AnswerQuery(const acfIID& iid, void** out) override;
    void Record(const char* kind, AAX_CParamID id, double value) const;

    std::string mEffectID;
    float mSampleRate;
    int32_t mInputStem;
    int32_t mOutputStem;
    int32_t mLatency = 0;
    std::vector<int32_t> mLatencies;
    const STransportState& mTransport;
    CHostTransport mTransportView;
    AAX_IACFEffectParameters* mEffect = nullptr;  // not owned
    bool mHostIsSetting = false;
    bool mRecordAutomation = true;
    mutable int mAnswerDepth = 0;
    std::vector<SPostedPacket> mPackets;
    mutable std::vector<SAutomationEvent> mAutomation;
    std::map<std::string, bool> mTouched;
};

}  // namespace AAXHost
