// A host for benchmarks: one bundle opened through aaxhost's own pieces,
// instances created through its registered factory, and its registered
// process procedure called buffer by buffer with nothing else on the clock.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "AAX.h"
#include "AAX_IDescription.h"
#include "HostInstance.h"
#include "PluginSession.h"
#include "TransportState.h"

namespace BenchProcess {

constexpr double kSampleRate = 48000.0;

// Bundles are opened once and stay open for the whole run, as in a host
// session; CloseSessions shuts them down and checks that nothing leaked.
AAXHost::CPluginSession* OpenSession(const std::string& bundlePath, std::string& error);
bool CloseSessions(std::string& error);

// While alive, the standard output (where plug-ins print their banners) goes
// to standard error, so that a benchmark report stays clean.
class CQuietStdout {
public:
    CQuietStdout();
    ~CQuietStdout();
    CQuietStdout(const CQuietStdout&) = delete;
    CQuietStdout& operator=(const CQuietStdout&) = delete;

private:
    int mSaved = -1;
};

class CBenchRig {
public:
    CBenchRig() = default;
    ~CBenchRig();
    CBenchRig(const CBenchRig&) = delete;
    CBenchRig& operator=(const CBenchRig&) = delete;

    bool Open(const std::string& bundlePath, int blockSize, int instances, std::string& error);

    // Host side of one buffer, not measured: transport, coefficients and
    // posted packets, MIDI input, cleared outputs.
    void Prepare(const std::vector<AAX_CMidiPacket>& midi);
    // One call of the registered process procedure with every instance.
    void Process() { mProcess(mContexts.data(), mContexts.data() + mContexts.size()); }
    // The same call with contexts whose private data holds no wrapper: the
    // callback's silence path.
    void ProcessWithoutWrapper()
    {
        mProcess(mSilenceContexts.data(), mSilenceContexts.data() + mSilenceContexts.size());
    }
    // Prepare, then Process: one whole buffer.
    void RunBuffer(const std::vector<AAX_CMidiPacket>& midi)
    {
        Prepare(midi);
        Process();
    }

    // Through every instance's SetParameterNormalizedValue, as aaxhost's
    // --set does; the host answers with UpdateParameterNormalizedValue.
    bool SetParameter(const std::string& id, double value, std::string& error);
    bool SetBypass(bool on, std::string& error);

    // Instance i's effect parameters object, as the host holds it.
    AAX_IACFEffectParameters* Effect(int i) { return mInstances[static_cast<size_t>(i)]->Effect(); }

    int BlockSize() const { return mBlockSize; }
    int Instances() const { return static_cast<int>(mInstances.size()); }
    // Instance i's output channel as the last buffer left it.
    const float* Output(int instance, int channel) const
    {
        return mInstances[static_cast<size_t>(instance)]->Output(channel);
    }
    // Peak of the main output of instance 0 in the last buffer.
    float MainPeak() const;
    // Every instance's first `channels` inputs (or outputs) set to value,
    // and whether the outputs all hold value.
    void FillInputs(int channels, float value);
    void FillOutputs(int channels, float value);
    bool OutputsEqual(int channels, float value) const;

private:
    AAXHost::CPluginSession* mSession = nullptr;
    AAX_CProcessProc mProcess = nullptr;
    int mBlockSize = 0;
    AAXHost::STransportState mTransport;
    int64_t mNextBlockStart = 0;
    std::vector<std::unique_ptr<AAXHost::CHostInstance>> mInstances;
    std::vector<void*> mContexts;
    // Copies of each instance's context with a null wrapper in private data.
    std::vector<std::vector<void*>> mSilenceSlots;
    std::vector<void*> mSilenceContexts;
    uint64_t mNullWrapper = 0;
};

// MIDI for benchmarks, on channel 1.
std::vector<AAX_CMidiPacket> ChordOn(int voices);
// count packets spread over the buffer: note-offs of the chord's notes, each
// struck again half a step later, so that the chord keeps sounding.
std::vector<AAX_CMidiPacket> Restrikes(int count, int voices, int blockSize);

}  // namespace BenchProcess
