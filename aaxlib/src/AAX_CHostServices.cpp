#include "AAX_CHostServices.h"

#include <cstdarg>
#include <cstdio>
#include <memory>

#include "AAX_VHostServices.h"

namespace {
std::unique_ptr<AAX_VHostServices>& HostServices()
{
    static std::unique_ptr<AAX_VHostServices> sHostServices;
    return sHostServices;
}
}  // namespace

void AAX_CHostServices::Set(IACFUnknown* pUnkHost)
{
    HostServices().reset(pUnkHost != nullptr ? new AAX_VHostServices(pUnkHost) : nullptr);
}

bool AAX_CHostServices::IsSet() { return HostServices() && HostServices()->IsValid(); }

AAX_Result AAX_CHostServices::HandleAssertFailure(const char* iFile, int32_t iLine, const char* iNote)
{
    if (!HostServices()) return AAX_ERROR_NULL_OBJECT;
    return HostServices()->HandleAssertFailure(iFile, iLine, iNote);
}

AAX_Result AAX_CHostServices::Trace(int32_t iPriority, const char* iMessage, ...)
{
    if (!HostServices() || iMessage == nullptr) return AAX_ERROR_NULL_OBJECT;
    char text[1024];
    va_list args;
    va_start(args, iMessage);
    std::vsnprintf(text, sizeof(text), iMessage, args);
    va_end(args);
    return HostServices()->Trace(iPriority, text);
}
