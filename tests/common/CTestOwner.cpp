#include "CTestOwner.h"

#include <sstream>

namespace TestSupport {

namespace {
std::string IdText(AAX_CParamID id) { return id != nullptr ? id : ""; }
}  // namespace

AAX_Result CTestOwner::TouchParameter(AAX_CParamID id)
{
    mCalls.push_back("touch " + IdText(id));
    return AAX_SUCCESS;
}

AAX_Result CTestOwner::SetParameterNormalizedValue(AAX_CParamID id, double value)
{
    std::ostringstream call;
    call << "set " << IdText(id) << " " << value;
    mCalls.push_back(call.str());
    mSetValues.emplace_back(IdText(id), value);
    return AAX_SUCCESS;
}

AAX_Result CTestOwner::ReleaseParameter(AAX_CParamID id)
{
    mCalls.push_back("release " + IdText(id));
    return AAX_SUCCESS;
}

}  // namespace TestSupport
