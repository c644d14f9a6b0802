// Plug-in side proxy of the host's services (assertions, traces).
#pragma once

#include "AAX_IHostServices.h"

class AAX_VHostServices : public AAX_IHostServices {
public:
    explicit AAX_VHostServices(IACFUnknown* pUnknown);
    ~AAX_VHostServices() override;
    AAX_VHostServices(const AAX_VHostServices&) = delete;
    AAX_VHostServices& operator=(const AAX_VHostServices&) = delete;

    bool IsValid() const { return mIHostServices != nullptr; }
    AAX_Result HandleAssertFailure(const char* iFile, int32_t iLine, const char* iNote) const override;
    AAX_Result Trace(int32_t iPriority, const char* iMessage) const override;

private:
    AAX_IACFHostServices* mIHostServices = nullptr;
};
