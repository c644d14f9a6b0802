// Host-side doubles of the AAX interfaces a back end reads while it runs:
// the transport, MIDI nodes and the view container.
#pragma once

#include <cstdint>
#include <vector>

#include "AAX_IMIDINode.h"
#include "AAX_ITransport.h"
#include "AAX_IViewContainer.h"

namespace TestSupport {

// A transport whose state the test sets directly.
class CTestTransport : public AAX_ITransport {
public:
    AAX_Result GetCurrentTempo(double* out) const override { *out = mTempo; return AAX_SUCCESS; }
    AAX_Result GetCurrentMeter(int32_t* numerator, int32_t* denominator) const override
    {
        *numerator = mNumerator;
        *denominator = mDenominator;
        return AAX_SUCCESS;
    }
    AAX_Result IsTransportPlaying(bool* out) const override { *out = mPlaying; return AAX_SUCCESS; }
    AAX_Result GetCurrentTickPosition(int64_t* out) const override { *out = mTicks; return AAX_SUCCESS; }
    AAX_Result GetCurrentLoopPosition(bool* looping, int64_t* start, int64_t* end) const override
    {
        *looping = false;
        *start = *end = 0;
        return AAX_SUCCESS;
    }
    AAX_Result GetCurrentNativeSampleLocation(int64_t* out) const override
    {
        *out = mSamplePosition;
        return AAX_SUCCESS;
    }

    double mTempo = 120.0;
    int32_t mNumerator = 4;
    int32_t mDenominator = 4;
    bool mPlaying = false;
    int64_t mTicks = 0;
    int64_t mSamplePosition = 0;
};

inline AAX_CMidiPacket MidiPacket(uint32_t timestamp, const std::vector<unsigned char>& bytes, bool immediate = false)
{
    AAX_CMidiPacket packet;
    packet.mTimestamp = timestamp;
    packet.mLength = static_cast<uint32_t>(bytes.size());
    for (size_t i = 0; i < bytes.size() && i < 4; ++i)
        packet.mData[i] = bytes[i];
    packet.mIsImmediate = immediate ? 1 : 0;
    return packet;
}

// Hands the packets in mPackets to the plug-in side and keeps what it posts.
class CTestMidiNode : public AAX_IMIDINode {
public:
    AAX_CMidiStream* GetNodeBuffer() override
    {
        mStream.mBufferSize = static_cast<uint32_t>(mPackets.size());
        mStream.mBuffer = mPackets.empty() ? nullptr : mPackets.data();
        return &mStream;
    }
    AAX_Result PostMIDIPacket(AAX_CMidiPacket* packet) override
    {
        mPosted.push_back(*packet);
        return AAX_SUCCESS;
    }
    AAX_ITransport* GetTransport() override { return mTransport; }

    // A three-byte message.
    void Add(uint32_t timestamp, uint8_t status, uint8_t data1, uint8_t data2 = 0, bool immediate = false)
    {
        mPackets.push_back(MidiPacket(timestamp, {status, data1, data2}, immediate));
    }

    std::vector<AAX_CMidiPacket> mPackets;
    std::vector<AAX_CMidiPacket> mPosted;
    AAX_CMidiStream mStream;
    AAX_ITransport* mTransport = nullptr;
};

// Keeps every size the plug-in side asks for.
class CTestViewContainer : public AAX_IViewContainer {
public:
    int32_t GetType() override { return mType; }
    void* GetPtr() override { return mParent; }
    AAX_Result GetModifiers(uint32_t* out) override { *out = 0; return AAX_SUCCESS; }
    AAX_Result SetViewSize(AAX_Point& size) override
    {
        mSizes.push_back(size);
        return AAX_SUCCESS;
    }

    int32_t mType = AAX_eViewContainer_Type_NSView;
    // Nothing draws into it here: a recognisable value the test plug-ins'
    // records can be checked against.
    void* mParent = reinterpret_cast<void*>(0x1234);
    std::vector<AAX_Point> mSizes;
};

}  // namespace TestSupport
