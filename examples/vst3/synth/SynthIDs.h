// Identifiers shared by the test instrument's processor and controller.
#pragma once

#include "pluginterfaces/base/funknown.h"
#include "pluginterfaces/vst/vsttypes.h"

namespace MrvTest {

enum SynthParam : Steinberg::Vst::ParamID {
    kSynthVolume = 0,    // MIDI CC 7 (CC 11 after a CC-assignment restart)
    kSynthPressure = 1,  // channel after-touch
    kSynthBend = 2,      // pitch bend, +-2 semitones
    kSynthProgram = 3,   // program change, 8 programs, in unit 1
    kSynthHidden = 4,
    kSynthPeak = 5,      // read-only, sent back by the processor
    // The strict build only, so that the plain build's state stays as it was:
    kSynthBypass = 6,    // the plug-in's own bypass: silence, notes kept
    kSynthOctave = 7,    // three values (-1, 0, +1 octave), in unit 3
    kSynthAllParams = 8,
#ifdef MRV_STRICT
    kSynthParamCount = kSynthAllParams
#else
    kSynthParamCount = 6
#endif
};

// The strict build's parameter IDs are not their indices, as in most
// frameworks' plug-ins.
#ifdef MRV_STRICT
constexpr Steinberg::Vst::ParamID kSynthIdBase = 7000;
#else
constexpr Steinberg::Vst::ParamID kSynthIdBase = 0;
#endif
constexpr Steinberg::Vst::ParamID SynthTag(Steinberg::Vst::ParamID param) { return kSynthIdBase + param; }

constexpr Steinberg::Vst::UnitID kSynthUnit = 1;
// "Tone", and "Pitch" inside it: a host shows them as nested groups.
constexpr Steinberg::Vst::UnitID kSynthToneUnit = 2;
constexpr Steinberg::Vst::UnitID kSynthPitchUnit = 3;
constexpr Steinberg::Vst::ProgramListID kSynthProgramList = 100;
constexpr Steinberg::int32 kSynthProgramCount = 8;
constexpr Steinberg::int32 kSynthStateVersion = 1;

static const Steinberg::FUID kSynthProcessorUID(0x4D72764E, 0x53796E50, 0x726F6331, 0x00000001);
static const Steinberg::FUID kSynthControllerUID(0x4D72764E, 0x53796E43, 0x74726C31, 0x00000002);

}  // namespace MrvTest
