// A plug-in hosted the plain way, without the wrapper: the baseline the
// wrapped figures are compared with. Each driver starts the plug-in as the
// wrapper's host mode does and feeds it the same rate, block, transport and
// MIDI, so that both sides do the same work and their outputs can be compared.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "AAX.h"

namespace BenchOverhead {

struct SDirectSetup {
    std::string path;  // the VST 2 library or the VST 3 module file
    double sampleRate = 48000.0;
    int blockSize = 64;
    int instances = 1;
    bool standard = true;  // start-up as the STANDARD host mode, else CLASSIC
};

class IDirectHost {
public:
    virtual ~IDirectHost() = default;
    virtual bool Open(const SDirectSetup& setup, std::string& error) = 0;
    // The host's own work for one buffer, off the clock: transport and the
    // MIDI in the plug-in's format.
    virtual void Prepare(const std::vector<AAX_CMidiPacket>& midi, int64_t position) = 0;
    // What the plug-in is asked to do for that buffer, every instance.
    virtual void Process() = 0;
    // The channels the plug-in writes, and what it wrote there.
    virtual int OutputChannels() const = 0;
    virtual const float* Output(int instance, int channel) const = 0;
};

std::unique_ptr<IDirectHost> MakeDirectVst2Host();
std::unique_ptr<IDirectHost> MakeDirectVst3Host();

// The transport both sides see: 120 bpm, 4/4, playing.
constexpr double kTempo = 120.0;
inline double QuarterNotesAt(int64_t position, double sampleRate)
{
    return static_cast<double>(position) / sampleRate * kTempo / 60.0;
}

}  // namespace BenchOverhead
