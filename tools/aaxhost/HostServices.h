// The host object given to ACFStartup/ACFShutdown: assertion and trace
// reports from the plug-in go to standard error.
#pragma once

#include "AAX_IHostServices.h"
#include "RefCount.h"

namespace AAXHost {

class CHostServices final : public AAX_IACFHostServices {
public:
    ACFRESULT QueryInterface(const acfIID& iid, void** out) override;
    acfUInt32 AddRef() override { return mRefs.Add(); }
    acfUInt32 Release() override;

    AAX_Result HandleAssertFailure(const char* file, int32_t line, const char* note) const override;
    AAX_Result Trace(int32_t priority, const char* message) const override;

private:
    ~CHostServices() = default;
    CRefCount mRefs;
};

}  // namespace AAXHost
