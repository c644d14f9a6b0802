// Plug-in side proxy of the host's controller of one effect instance.
#pragma once

#include "AAX_IController.h"

class AAX_VController : public AAX_IController {
public:
    explicit AAX_VController(IACFUnknown* pUnknown);
    ~AAX_VController() override;
    AAX_VController(const AAX_VController&) = delete;
    AAX_VController& operator=(const AAX_VController&) = delete;

    bool IsValid() const override { return mIController != nullptr; }
    AAX_Result GetEffectID(char* outEffectID, uint32_t inBufferSize) const override;
    AAX_Result GetSampleRate(AAX_CSampleRate* outSampleRate) const override;
    AAX_Result GetInputStemFormat(int32_t* outStemFormat) const override;
    AAX_Result GetOutputStemFormat(int32_t* outStemFormat) const override;
    AAX_Result GetSignalLatency(int32_t* outSamples) const override;
    AAX_Result SetSignalLatency(int32_t inNumSamples) override;
    AAX_Result PostPacket(AAX_CFieldIndex inFieldIndex, const void* inPayloadP, uint32_t inPayloadSize) override;
    AAX_Result SendNotification(AAX_CTypeID inNotificationType, const void* inNotificationData, uint32_t inNotificationDataSize) override;

private:
    AAX_IACFController* mIController = nullptr;
};
