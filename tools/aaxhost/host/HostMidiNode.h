// A MIDI node of one algorithm instance: the input node carries the packets
// of the current buffer, the output node records what the plug-in posts.
#pragma once

#include <cstdint>
#include <vector>

#include "AAX_IMIDINode.h"

namespace AAXHost {

struct SPostedMidi {
    int64_t samplePosition = 0;  // buffer start + the packet's time stamp
    AAX_CMidiPacket packet;
};

class CHostMidiNode final : public AAX_IMIDINode {
public:
    CHostMidiNode(int32_t type, AAX_ITransport* transport, const int64_t* blockStart)
        : mType(type), mTransport(transport), mBlockStart(blockStart)
    {
        mPackets.reserve(256);
    }

    AAX_CMidiStream* GetNodeBuffer() override;
    AAX_Result PostMIDIPacket(AAX_CMidiPacket* packet) override;
    AAX_ITransport* GetTransport() override { return mTransport; }

    void SetBufferPackets(const std::vector<AAX_CMidiPacket>& packets);
    int32_t Type() const { return mType; }
    const std::vector<SPostedMidi>& Posted() const { return mPosted; }

private:
    int32_t mType;
    AAX_ITransport* mTransport;
    const int64_t* mBlockStart;
    std::vector<AAX_CMidiPacket> mPackets;
    AAX_CMidiStream mStream;
    std::vector<SPostedMidi> mPosted;
};

}  // namespace AAXHost
