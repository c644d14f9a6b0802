#include "SelfBypass.h"

#include <algorithm>
#include <cmath>

#include "DirectRig.h"

namespace AAXHost {

bool CompareWithOwnBypass(CProcessingRig& rig, const std::vector<int32_t>& frames, size_t skip, float& worst,
                          std::string& error)
{
    worst = 0.0f;
    AAXDirect::SDirectSetup setup;
    setup.path = rig.Instance().WrapperStatus().plugin;
    CDirectRig direct(setup, rig.SampleRate(), rig.MaxBlock());
    if (!direct.Create(error)) {
        error = "hosted directly: " + error;
        return false;
    }
    const int bypass = direct.Plugin().BypassParameter();
    if (bypass < 0) {
        error = "hosted directly, the plug-in shows no bypass parameter";
        return false;
    }
    direct.Plugin().SetParameter(bypass, 1.0);
    const int channels = std::min({2, direct.Plugin().OutputChannels(), rig.Instance().OutputChannels()});
    for (size_t i = 0; i < frames.size(); ++i) {
        rig.Process(frames[i]);
        direct.Process(frames[i]);
        if (i < skip)
            continue;
        for (int ch = 0; ch < channels; ++ch) {
            const float* ours = rig.Instance().Output(ch);
            const float* theirs = direct.Plugin().Output(ch);
            for (int32_t s = 0; s < frames[i]; ++s)
                worst = std::max(worst, std::fabs(ours[s] - theirs[s]));
        }
    }
    return true;
}

void JudgeOwnBypass(CProcessingRig& rig, const std::vector<int32_t>& frames, SCheckResult& result)
{
    constexpr size_t kCrossFade = 2;
    float worst = 0.0f;
    std::string error;
    if (!CompareWithOwnBypass(rig, frames, kCrossFade, worst, error)) {
        result.Fail("the plug-in bypasses itself, but its bypass could not be played directly: " + error);
        return;
    }
    result.details["own_bypass_max_difference"] = worst;
    if (!(worst <= 1e-5f))
        result.Fail("with the master bypass on, the main output differs from the plug-in's own bypass, hosted "
                    "directly, by up to " + std::to_string(worst));
}

}  // namespace AAXHost
