// One VST 2 or VST 3 plug-in hosted the plain way, without the wrapper: the
// baseline against which the wrapper is measured (bench), compared (tests)
// and judged (validate). Start-up follows a mainstream host (STANDARD) or
// the wrapper's CLASSIC host mode.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "AAX.h"

namespace AAXDirect {

struct SDirectSetup {
    std::string path;  // the VST 2 library, or the VST 3 bundle or module file
    double sampleRate = 48000.0;
    int maxBlock = 4096;  // the largest buffer announced (STANDARD hosts announce 4096)
    bool standard = true;  // start-up as a mainstream host, else as the CLASSIC host mode
    bool oneEventPerCall = false;  // VST 2: one effProcessEvents per event, as the wrapper delivers them
};

struct SDirectTransport {
    double tempo = 120.0;
    double quarterNotes = 0.0;
    int64_t samplePosition = 0;
};

class IDirectPlugin {
public:
    virtual ~IDirectPlugin() = default;

    // Loads and creates the plug-in; STANDARD start-up is complete on return.
    virtual bool Open(const SDirectSetup& setup, std::string& error) = 0;
    // CLASSIC VST 2 applies the rate only now (suspend, rate, resume), as the
    // wrapper does on its first buffer; otherwise nothing.
    virtual void Start() = 0;
    // Main thread, no audio running: suspend, new rate and maximum buffer, resume.
    virtual void Reconfigure(double sampleRate, int maxBlock) = 0;

    // Every channel the plug-in declares has a buffer of maxBlock samples.
    virtual int InputChannels() const = 0;
    virtual int OutputChannels() const = 0;
    virtual float* Input(int channel) = 0;
    virtual const float* Output(int channel) const = 0;

    // Main thread. Values are normalised (0..1). Parameters a host cannot set
    // (VST 3 read-only ones) are left out of the count.
    virtual int ParameterCount() const = 0;
    virtual std::string ParameterName(int index) = 0;
    virtual std::string ParameterText(int index) = 0;
    virtual double GetParameter(int index) = 0;
    // Safe while another thread processes, as in a host.
    virtual void SetParameter(int index, double value) = 0;
    // The plug-in's own bypass switch among those parameters (VST 3
    // kIsBypass), or -1.
    virtual int BypassParameter() const { return -1; }

    // VST 2: the bank chunk when the plug-in keeps its state in chunks, else
    // every parameter's value. VST 3: the component's and the controller's
    // state, one after the other.
    virtual bool SaveState(std::vector<char>& state, std::string& error) = 0;
    virtual bool LoadState(const std::vector<char>& state, std::string& error) = 0;

    // Audio thread, no allocation: the host's work for one buffer (MIDI and
    // transport in the plug-in's terms), then the plug-in's.
    virtual void Prepare(const AAX_CMidiPacket* midi, size_t count, const SDirectTransport& transport, int frames) = 0;
    virtual void Process(int frames) = 0;
    // The first output channel the plug-in wrote past the end of (its
    // buffers are followed by guard zones), or -1. No allocation.
    virtual int FirstOverrunOutput() const = 0;
    // Main thread, no audio running: the latency the plug-in declares now
    // (VST 2 initialDelay, VST 3 getLatencySamples).
    virtual int32_t Latency() = 0;
};

std::unique_ptr<IDirectPlugin> MakeDirectVst2Plugin();
std::unique_ptr<IDirectPlugin> MakeDirectVst3Plugin();
// By the file: a .vst3 bundle or module is VST 3, anything else VST 2.
std::unique_ptr<IDirectPlugin> MakeDirectPlugin(const std::string& path);

}  // namespace AAXDirect
