// The host object given to ACFStartup/ACFShutdown: assertion and trace
// reports from the plug-in go to standard error.
#pragma once

#include "AAX_IHostServices.h"
#include "RefCount.h"

namespace AAXHost {

class CHostServices final : public CHostUnknown<AAX_IACFHostServices> {
public:
    AAX_Result HandleAssertFailure(const char* file, int32_t line, const char* note) const override;
    AAX_Result Trace(int32_t priority, const char* message) const override;

private:
    ~CHostServices() override = default;
    ACFRESULT AnswerQuery(const acfIID& iid, void** out) override;
};

}  // namespace AAXHost
