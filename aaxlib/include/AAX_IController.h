// The controller family: the host's view of one running effect instance
// (sample rate, stem formats, packets to the algorithm, notifications).
#pragma once

#include "ACFBase.h"
#include "AAX.h"

inline constexpr acfIID IID_IAAXControllerV1 = {0x4D72766E, 0x0201, 0x4141, {0x58, 0x43, 0x74, 0x72, 0x6C, 0x72, 0x56, 0x31}};

class AAX_IACFController : public IACFUnknown {
public:
    virtual AAX_Result GetEffectID(char* outEffectID, uint32_t inBufferSize) const = 0;
    virtual AAX_Result GetSampleRate(AAX_CSampleRate* outSampleRate) const = 0;
    virtual AAX_Result GetInputStemFormat(int32_t* outStemFormat) const = 0;
    virtual AAX_Result GetOutputStemFormat(int32_t* outStemFormat) const = 0;
    virtual AAX_Result GetSignalLatency(int32_t* outSamples) const = 0;
    virtual AAX_Result SetSignalLatency(int32_t inNumSamples) = 0;
    // Copies the payload into the algorithm context field before the next buffer.
    virtual AAX_Result PostPacket(AAX_CFieldIndex inFieldIndex, const void* inPayloadP, uint32_t inPayloadSize) = 0;
    virtual AAX_Result SendNotification(AAX_CTypeID inNotificationType, const void* inNotificationData, uint32_t inNotificationDataSize) = 0;

protected:
    ~AAX_IACFController() = default;
};

class AAX_IController {
public:
    virtual ~AAX_IController() = default;
    virtual bool IsValid() const = 0;
    virtual AAX_Result GetEffectID(char* outEffectID, uint32_t inBufferSize) const = 0;
    virtual AAX_Result GetSampleRate(AAX_CSampleRate* outSampleRate) const = 0;
    virtual AAX_Result GetInputStemFormat(int32_t* outStemFormat) const = 0;
    virtual AAX_Result GetOutputStemFormat(int32_t* outStemFormat) const = 0;
    virtual AAX_Result GetSignalLatency(int32_t* outSamples) const = 0;
    virtual AAX_Result SetSignalLatency(int32_t inNumSamples) = 0;
    virtual AAX_Result PostPacket(AAX_CFieldIndex inFieldIndex, const void* inPayloadP, uint32_t inPayloadSize) = 0;
    virtual AAX_Result SendNotification(AAX_CTypeID inNotificationType, const void* inNotificationData, uint32_t inNotificationDataSize) = 0;
};
