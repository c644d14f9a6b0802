// One effect instance driven the way a host plays it: transport, a chord
// struck and released over and over, optionally a test signal on every
// input, and a count of the samples no output may hold.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "AAX_IDescription.h"
#include "HostInstance.h"
#include "PluginDescription.h"
#include "TransportState.h"

namespace AAXHost {

struct SSampleCounts {
    uint64_t samples = 0;
    uint64_t nan = 0;
    uint64_t infinite = 0;
    uint64_t denormal = 0;
    void Add(const SSampleCounts& o)
    {
        samples += o.samples, nan += o.nan, infinite += o.infinite, denormal += o.denormal;
    }
};

class CProcessingRig {
public:
    CProcessingRig(const SEffectInfo& effect, const SComponentInfo& component, double sampleRate, int32_t maxBlock);
    ~CProcessingRig();
    bool Create(std::string& error);

    void SetTestInput(bool on) { mTestInput = on; }
    void SetNotes(bool on) { mNotes = on; }
    // Counts the audio thread's allocations inside the process call only.
    void SetCountAllocations(bool on) { mCountAllocations = on; }
    // One call of the process procedure for this instance alone.
    void Process(int32_t frames);
    // One call for several instances, as a host batches them.
    static void ProcessTogether(const std::vector<CProcessingRig*>& rigs, int32_t frames);

    const SSampleCounts& Counts() const { return mCounts; }
    void ResetCounts() { mCounts = SSampleCounts(); }
    CHostInstance& Instance() { return *mInstance; }
    double SampleRate() const { return mSampleRate; }
    int64_t Position() const { return mPosition; }
    int32_t MaxBlock() const { return mMaxBlock; }
    // Largest difference between the main output pair and input channels
    // 0 and 1 in the last buffer; with the test input, input as late as the
    // latency the effect reported.
    float MainOutputDistanceFromInput(int32_t frames);

private:
    void Prepare(int32_t frames);
    void Finish(int32_t frames);

    double mSampleRate;
    int32_t mMaxBlock;
    STransportState mTransport;
    std::unique_ptr<CHostInstance> mInstance;
    AAX_CProcessProc mProcess = nullptr;
    std::vector<AAX_CMidiPacket> mPackets;
    int64_t mPosition = 0;
    bool mTestInput = false;
    bool mNotes = true;
    bool mCountAllocations = false;
    SSampleCounts mCounts;
};

}  // namespace AAXHost
