#include "AAX_VHostServices.h"

AAX_VHostServices::AAX_VHostServices(IACFUnknown* pUnknown)
{
    void* p = nullptr;
    if (pUnknown != nullptr && pUnknown->QueryInterface(IID_IAAXHostServicesV1, &p) == ACF_OK) mIHostServices = static_cast<AAX_IACFHostServices*>(p);
}

AAX_VHostServices::~AAX_VHostServices()
{
    if (mIHostServices != nullptr) mIHostServices->Release();
}

AAX_Result AAX_VHostServices::HandleAssertFailure(const char* iFile, int32_t iLine, const char* iNote) const
{
    if (mIHostServices == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIHostServices->HandleAssertFailure(iFile, iLine, iNote);
}

AAX_Result AAX_VHostServices::Trace(int32_t iPriority, const char* iMessage) const
{
    if (mIHostServices == nullptr) return AAX_ERROR_NULL_OBJECT;
    return mIHostServices->Trace(iPriority, iMessage);
}
