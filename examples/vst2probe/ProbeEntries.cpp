// The probe's exported entry functions. PROBE_ENTRY selects a variant for
// the loader tests: 0 both usual names, 1 only "main_macho", 2 an entry
// that refuses (returns null), 3 no entry function at all.
#include "ProbePlugin.h"

#ifndef PROBE_ENTRY
#define PROBE_ENTRY 0
#endif

#define PROBE_EXPORT extern "C" __attribute__((visibility("default")))

#if PROBE_ENTRY == 0
PROBE_EXPORT AEffect* VSTPluginMain(audioMasterCallback host) { return Vst2Probe::CreateProbe(host, "VSTPluginMain"); }

// "main" cannot be declared as a C++ function of this type; an assembler
// label binds the symbol instead.
PROBE_EXPORT AEffect* ProbeLegacyMain(audioMasterCallback host) __asm__("main");
PROBE_EXPORT AEffect* ProbeLegacyMain(audioMasterCallback host) { return Vst2Probe::CreateProbe(host, "main"); }
#elif PROBE_ENTRY == 1
PROBE_EXPORT AEffect* main_macho(audioMasterCallback host) { return Vst2Probe::CreateProbe(host, "main_macho"); }
#elif PROBE_ENTRY == 2
PROBE_EXPORT AEffect* VSTPluginMain(audioMasterCallback host)
{
    // Talks to the host like a real plug-in, then declines.
    if (host != nullptr)
        host(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f);
    Vst2Probe::CRecorder recorder;
    recorder.Line("entry VSTPluginMain refused");
    return nullptr;
}
#else
PROBE_EXPORT int vst2probe_without_entry() { return 0; }
#endif
