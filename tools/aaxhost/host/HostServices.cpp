#include "HostServices.h"

#include <cstdio>

namespace AAXHost {

ACFRESULT CHostServices::AnswerQuery(const acfIID& iid, void** out)
{
    if (iid == IID_IACFUnknown || iid == IID_IAAXHostServicesV1)
        return AnswerInterface<AAX_IACFHostServices>(this, out);
    return ACF_E_NOINTERFACE;
}

AAX_Result CHostServices::HandleAssertFailure(const char* file, int32_t line, const char* note) const
{
    std::fprintf(stderr, "aaxhost: plug-in assertion failed at %s:%d: %s\n", file ? file : "?", line, note ? note : "");
    return AAX_SUCCESS;
}

AAX_Result CHostServices::Trace(int32_t priority, const char* message) const
{
    std::fprintf(stderr, "aaxhost: plug-in trace [%d]: %s\n", priority, message ? message : "");
    return AAX_SUCCESS;
}

}  // namespace AAXHost
