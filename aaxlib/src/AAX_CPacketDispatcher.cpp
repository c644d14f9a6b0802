#include "AAX_CPacketDispatcher.h"

#include "AAX_IController.h"
#include "AAX_IEffectParameters.h"
#include "AAX_IParameter.h"

namespace {
// Binds the standard handler to its dispatcher.
class CSingleValueHandler : public AAX_IPacketHandler {
public:
    explicit CSingleValueHandler(const AAX_CPacketDispatcher* dispatcher) : mDispatcher(dispatcher) {}
    AAX_IPacketHandler* Clone() const override { return new CSingleValueHandler(*this); }
    AAX_Result CallHandler(AAX_CParamID iParameterID, AAX_CPacket& ioPacket) const override
    {
        return mDispatcher->GenerateSingleValuePacket(iParameterID, ioPacket);
    }

private:
    const AAX_CPacketDispatcher* mDispatcher;
};
}  // namespace

void AAX_CPacketDispatcher::Initialize(AAX_IController* iController, AAX_IEffectParameters* iEffectParameters)
{
    AAX_StLock_Guard guard(mLockGuard);
    mController = iController;
    mEffectParameters = iEffectParameters;
}

AAX_Result AAX_CPacketDispatcher::RegisterPacket(AAX_CParamID paramID, AAX_CFieldIndex portID,
                                                 const AAX_IPacketHandler* iHandler)
{
    if (paramID == nullptr || iHandler == nullptr) return AAX_ERROR_NULL_ARGUMENT;
    AAX_StLock_Guard guard(mLockGuard);
    PacketRecord record{AAX_CPacket(portID), std::unique_ptr<AAX_IPacketHandler>(iHandler->Clone())};
    record.mPacket.SetDirty(true);
    mPacketsHandlers.emplace(paramID, std::move(record));
    return AAX_SUCCESS;
}

AAX_Result AAX_CPacketDispatcher::RegisterPacket(AAX_CParamID paramID, AAX_CFieldIndex portID)
{
    const CSingleValueHandler handler(this);
    return RegisterPacket(paramID, portID, &handler);
}

AAX_Result AAX_CPacketDispatcher::SetDirty(AAX_CParamID paramID, bool iDirty)
{
    if (paramID == nullptr) return AAX_SUCCESS;
    AAX_StLock_Guard guard(mLockGuard);
    auto range = mPacketsHandlers.equal_range(std::string_view(paramID));
    for (auto it = range.first; it != range.second; ++it) it->second.mPacket.SetDirty(iDirty);
    return AAX_SUCCESS;
}

AAX_Result AAX_CPacketDispatcher::UpdateParameter(AAX_IParameter& parameter, AAX_CParamID paramID,
                                                  double normalizedValue)
{
    AAX_StLock_Guard guard(mLockGuard);
    parameter.UpdateNormalizedValue(normalizedValue);
    if (paramID == nullptr) return AAX_SUCCESS;
    auto range = mPacketsHandlers.equal_range(std::string_view(paramID));
    for (auto it = range.first; it != range.second; ++it) it->second.mPacket.SetDirty(true);
    return AAX_SUCCESS;
}

AAX_Result AAX_CPacketDispatcher::Dispatch()
{
    AAX_StLock_Guard guard(mLockGuard);
    if (mPacketsHandlers.empty()) return AAX_SUCCESS;
    AAX_Result result = AAX_SUCCESS;
    for (auto& entry : mPacketsHandlers) {
        PacketRecord& record = entry.second;
        if (!record.mPacket.IsDirty()) continue;
        if (record.mHandler->CallHandler(entry.first.c_str(), record.mPacket) == AAX_SUCCESS) {
            result = mController != nullptr
                         ? mController->PostPacket(record.mPacket.GetID(), record.mPacket.GetData(), record.mPacket.GetSize())
                         : AAX_ERROR_NULL_OBJECT;
        }
        record.mPacket.SetDirty(false);
    }
    return result;
}

AAX_Result AAX_CPacketDispatcher::GenerateSingleValuePacket(AAX_CParamID iParam, AAX_CPacket& ioPacket) const
{
    if (mEffectParameters == nullptr) return AAX_ERROR_NULL_OBJECT;
    AAX_IParameter* parameter = nullptr;
    if (mEffectParameters->GetParameter(iParam, &parameter) != AAX_SUCCESS || parameter == nullptr)
        return AAX_ERROR_NULL_OBJECT;

    // Booleans are asked first so that a switch never travels as a float.
    bool boolValue = false;
    float floatValue = 0.0f;
    int32_t intValue = 0;
    double doubleValue = 0.0;
    if (parameter->GetValueAsBool(&boolValue))
        *ioPacket.GetPtr<int32_t>() = boolValue ? 1 : 0;
    else if (parameter->GetValueAsFloat(&floatValue))
        *ioPacket.GetPtr<float>() = floatValue;
    else if (parameter->GetValueAsInt32(&intValue))
        *ioPacket.GetPtr<int32_t>() = intValue;
    else if (parameter->GetValueAsDouble(&doubleValue))
        *ioPacket.GetPtr<double>() = doubleValue;
    else
        return AAX_ERROR_INVALID_ARGUMENT;  // strings have no single-value layout
    return AAX_SUCCESS;
}

void AAX_CPacketDispatcher::RemoveAllPackets()
{
    AAX_StLock_Guard guard(mLockGuard);
    mPacketsHandlers.clear();
}
