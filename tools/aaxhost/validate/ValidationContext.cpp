#include "ValidationContext.h"

#include "PluginSession.h"

namespace AAXHost {

CValidationContext::CValidationContext(const SValidateConfig& config, uint64_t seed)
    : mConfig(config), mPlan(PlanForLevel(config.level)), mRandom(seed)
{
}

CValidationContext::~CValidationContext() = default;

bool CValidationContext::Open(std::string& error)
{
    if (mSession)
        return mEffect != nullptr;
    mSession = std::make_unique<CPluginSession>();
    if (!mSession->Open(mConfig.bundle, error))
        return false;
    mEffect = mSession->FindEffect("", error);
    if (!mEffect)
        return false;
    mComponent = FindProcessingComponent(*mEffect);
    if (!mComponent || mComponent->processProcs.empty() || !mComponent->processProcs.front().proc) {
        mEffect = nullptr;
        error = "the effect registered no native process procedure";
        return false;
    }
    return true;
}

bool CValidationContext::Close(std::string& error)
{
    return !mSession || mSession->Close(error);
}

}  // namespace AAXHost
