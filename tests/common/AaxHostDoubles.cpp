#include "AaxHostDoubles.h"

namespace TestSupport {

AAX_CMidiPacket MidiPacket(uint32_t timestamp, const std::vector<unsigned char>& bytes, bool immediate)
{
    AAX_CMidiPacket packet;
    packet.mTimestamp = timestamp;
    packet.mLength = static_cast<uint32_t>(bytes.size());
    for (size_t i = 0; i < bytes.size() && i < 4; ++i)
        packet.mData[i] = bytes[i];
    packet.mIsImmediate = immediate ? 1 : 0;
    return packet;
}

AAX_CMidiStream* CTestMidiNode::GetNodeBuffer()
{
    mStream.mBufferSize = static_cast<uint32_t>(mPackets.size());
    mStream.mBuffer = mPackets.empty() ? nullptr : mPackets.data();
    return &mStream;
}

}  // namespace TestSupport
