// The wrapped plug-in hosted directly and played as CProcessingRig plays a
// bundle: transport, the same chord struck every 300 ms, the test signal on
// every input, and a count of the samples no output may hold.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "DirectPlugin.h"
#include "ProcessingRig.h"

namespace AAXHost {

// A plug-in that wrote past its buffers has damaged memory: the direct run
// ends there, as a crash would end it in a host.
class CPluginOverrun : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

class CDirectRig {
public:
    CDirectRig(const AAXDirect::SDirectSetup& setup, double sampleRate, int maxBlock);
    bool Create(std::string& error);

    void SetCountAllocations(bool on) { mCountAllocations = on; }
    // Audio thread: one buffer; allocates nothing of its own.
    void Process(int frames);

    AAXDirect::IDirectPlugin& Plugin() { return *mPlugin; }
    const SSampleCounts& Counts() const { return mCounts; }
    void ResetCounts() { mCounts = SSampleCounts(); }

private:
    AAXDirect::SDirectSetup mSetup;
    std::unique_ptr<AAXDirect::IDirectPlugin> mPlugin;
    std::vector<AAX_CMidiPacket> mPackets;
    int64_t mPosition = 0;
    bool mCountAllocations = false;
    SSampleCounts mCounts;
};

}  // namespace AAXHost
