// One comparison: a plug-in hosted directly and through its bundle, both fed
// the same buffers, their outputs compared sample for sample, and the cost
// of what each side asks of the plug-in measured per buffer.
#pragma once

#include <string>

namespace BenchOverhead {

class CInstructionCounter;

struct SPluginUnderTest {
    std::string label;
    std::string bundle;  // the wrapped product
    std::string direct;  // the same plug-in, for the direct host
    bool vst3 = false;
    bool standard = false;  // the bundle's host mode; the direct host starts it alike
    // Why the two outputs may differ when both play notes, or empty when
    // they must be identical.
    std::string notDeterministic;
};

struct SCase {
    const SPluginUnderTest* plugin = nullptr;
    bool chords = false;  // a held chord, restruck every buffer; else no MIDI at all
    int blockSize = 64;
    int instances = 1;
    std::string Name() const;
};

// Events per buffer in the chord cases (half note-offs, half note-ons).
constexpr int kEventsPerBuffer = 8;

struct SCaseResult {
    bool ok = false;
    std::string error;
    // Per buffer, all instances together: instructions, or nanoseconds when
    // no counter is given.
    double direct = 0.0;
    double wrapped = 0.0;
    std::string outputs;     // "identical", or how and why they differ
    bool outputsOk = false;  // identical, or differing for the stated reason
    double peakDb = 0.0;     // main output of instance 0, direct side
};

// counter == nullptr: time.
SCaseResult RunCase(const SCase& c, CInstructionCounter* counter);

}  // namespace BenchOverhead
