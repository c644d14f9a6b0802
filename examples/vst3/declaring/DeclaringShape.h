// What each build of the declaring plug-in is, chosen by compile definitions:
//   default                 MrvTestLatency: a stereo effect that delays its
//                           input by its latency parameter and declares a
//                           tail of kEffectTailSeconds.
//   MRV_AUX_STEREO_BUSES=n  an instrument with n auxiliary stereo output
//   MRV_AUX_MONO_BUSES=m    buses, then m mono ones, and an infinite tail.
// Every output channel of an instrument holds a level of its own, the same in
// every sample: LevelOf(bus, channel).
#pragma once

#include "pluginterfaces/base/funknown.h"
#include "pluginterfaces/vst/vsttypes.h"

namespace MrvTest {

#if defined(MRV_AUX_STEREO_BUSES) || defined(MRV_AUX_MONO_BUSES)
constexpr bool kInstrumentShape = true;
#else
constexpr bool kInstrumentShape = false;
#endif
#ifdef MRV_AUX_STEREO_BUSES
constexpr int kAuxStereoBuses = MRV_AUX_STEREO_BUSES;
#else
constexpr int kAuxStereoBuses = 0;
#endif
#ifdef MRV_AUX_MONO_BUSES
constexpr int kAuxMonoBuses = MRV_AUX_MONO_BUSES;
#else
constexpr int kAuxMonoBuses = 0;
#endif

constexpr Steinberg::Vst::ParamID kLatencyParam = 0;
constexpr int kMaxLatency = 2000;             // samples, at the value 1
constexpr double kDefaultLatencyValue = 0.25;  // 500 samples
constexpr double kEffectTailSeconds = 3.5;

inline float LevelOf(int bus, int channel) { return 0.04f * static_cast<float>(bus) + 0.01f * static_cast<float>(channel + 1); }

static const Steinberg::FUID kDeclaringEffectUID(0x4D72764E, 0x44636C45, 0x66663131, 0x00000007);
static const Steinberg::FUID kDeclaringInstrumentUID(0x4D72764E, 0x44636C49, 0x6E737431, 0x00000008);

}  // namespace MrvTest
