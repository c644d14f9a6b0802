#include "HostServices.h"

#include <cstdio>

namespace AAXHost {

ACFRESULT CHostServices::QueryInterface(const acfIID& iid, void** out)
{
    if (!out)
        return ACF_E_POINTER;
    *out = nullptr;
    if (iid == IID_IACFUnknown || iid == IID_IAAXHostServicesV1)
        return AnswerInterface<AAX_IACFHostServices>(this, out);
    return ACF_E_NOINTERFACE;
}

acfUInt32 CHostServices::Release()
{
    const acfUInt32 left = mRefs.Remove();
    if (left == 0)
        delete this;
    return left;
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
