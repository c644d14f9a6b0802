#include "AAX_VController.h"

AAX_VController::AAX_VController(IACFUnknown* pUnknown)
{
    void* p = nullptr;
    if (pUnknown != nullptr && pUnknown->QueryInterface(IID_IAAXControllerV1, &p) == ACF_OK) mIController = static_cast<AAX_IACFController*>(p);
}

AAX_VController::~AAX_VController()
{
    if (mIController != nullptr) mIController->Release();
}

AAX_Result AAX_VController::GetEffectID(char* outEffectID, uint32_t inBufferSize) const
{
    if (mIController == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIController->GetEffectID(outEffectID, inBufferSize);
}

AAX_Result AAX_VController::GetSampleRate(AAX_CSampleRate* outSampleRate) const
{
    if (mIController == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIController->GetSampleRate(outSampleRate);
}

AAX_Result AAX_VController::GetInputStemFormat(int32_t* outStemFormat) const
{
    if (mIController == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIController->GetInputStemFormat(outStemFormat);
}

AAX_Result AAX_VController::GetOutputStemFormat(int32_t* outStemFormat) const
{
    if (mIController == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIController->GetOutputStemFormat(outStemFormat);
}

AAX_Result AAX_VController::GetSignalLatency(int32_t* outSamples) const
{
    if (mIController == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIController->GetSignalLatency(outSamples);
}

AAX_Result AAX_VController::SetSignalLatency(int32_t inNumSamples)
{
    if (mIController == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIController->SetSignalLatency(inNumSamples);
}

AAX_Result AAX_VController::PostPacket(AAX_CFieldIndex inFieldIndex, const void* inPayloadP, uint32_t inPayloadSize)
{
    if (mIController == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIController->PostPacket(inFieldIndex, inPayloadP, inPayloadSize);
}

AAX_Result AAX_VController::SendNotification(AAX_CTypeID inNotificationType, const void* inNotificationData, uint32_t inNotificationDataSize)
{
    if (mIController == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIController->SendNotification(inNotificationType, inNotificationData, inNotificationDataSize);
}
