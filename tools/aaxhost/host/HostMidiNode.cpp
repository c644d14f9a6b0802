#include "HostMidiNode.h"

namespace AAXHost {

AAX_CMidiStream* CHostMidiNode::GetNodeBuffer()
{
    mStream.mBufferSize = static_cast<uint32_t>(mPackets.size());
    mStream.mBuffer = mPackets.empty() ? nullptr : mPackets.data();
    return &mStream;
}

AAX_Result CHostMidiNode::PostMIDIPacket(AAX_CMidiPacket* packet)
{
    if (!packet)
        return AAX_ERROR_NULL_ARGUMENT;
    mPosted.push_back({*mBlockStart + packet->mTimestamp, *packet});
    return AAX_SUCCESS;
}

void CHostMidiNode::SetBufferPackets(const std::vector<AAX_CMidiPacket>& packets)
{
    mPackets.assign(packets.begin(), packets.end());
}

}  // namespace AAXHost
