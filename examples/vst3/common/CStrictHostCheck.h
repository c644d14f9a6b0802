// What strict third-party plug-ins insist on from their host, checked the
// way they check it: by stopping the process. Every test plug-in refuses a
// block longer than the maximum it was promised; the strict builds
// (MRV_STRICT) also refuse to process before setActive(true).
#pragma once

#include <cstdlib>

#include "CTrace.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"

namespace MrvTest {

class CStrictHostCheck {
public:
    void Setup(const Steinberg::Vst::ProcessSetup& setup) { mMaxSamples = setup.maxSamplesPerBlock; }
    void Active(bool active) { mActive = active; }

    void BeforeProcess(const Steinberg::Vst::ProcessData& data) const
    {
        if (mMaxSamples > 0 && data.numSamples > mMaxSamples) {
            Trace("strict.abort samples=%d max=%d", data.numSamples, mMaxSamples);
            std::abort();
        }
#ifdef MRV_STRICT
        if (!mActive) {
            Trace("strict.abort process while inactive");
            std::abort();
        }
#endif
    }

private:
    Steinberg::int32 mMaxSamples = 0;
    bool mActive = false;
};

}  // namespace MrvTest
