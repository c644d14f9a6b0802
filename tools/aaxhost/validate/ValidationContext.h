// What a check works with inside its own process: the request, the counts
// of its level, a seeded random source, and the bundle opened once.
#pragma once

#include <cstdint>
#include <memory>
#include <random>
#include <string>

#include "PluginDescription.h"
#include "ValidateConfig.h"

namespace AAXHost {

class CPluginSession;

class CValidationContext {
public:
    CValidationContext(const SValidateConfig& config, uint64_t seed);
    ~CValidationContext();

    const SValidateConfig& Config() const { return mConfig; }
    const SLevelPlan& Plan() const { return mPlan; }
    // From 0 to 1, both included.
    double RandomUnit() { return std::uniform_real_distribution<double>(0.0, 1.0)(mRandom); }
    int RandomInt(int low, int high) { return std::uniform_int_distribution<int>(low, high)(mRandom); }
    std::mt19937_64& Random() { return mRandom; }

    // Loads and registers the bundle (once); false with the reason.
    bool Open(std::string& error);
    CPluginSession& Session() { return *mSession; }
    const SEffectInfo& Effect() const { return *mEffect; }
    const SComponentInfo& Component() const { return *mComponent; }
    // Shut-down and the plug-in's count of live objects.
    bool Close(std::string& error);

private:
    const SValidateConfig& mConfig;
    SLevelPlan mPlan;
    std::mt19937_64 mRandom;
    std::unique_ptr<CPluginSession> mSession;
    const SEffectInfo* mEffect = nullptr;
    const SComponentInfo* mComponent = nullptr;
};

}  // namespace AAXHost
