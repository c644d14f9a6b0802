// One buffer of the AAX host as the fake hosts see it: read from the
// algorithm context once per buffer by the front end, so that the back ends
// keep only the VST translation. A slice of a longer buffer is a block too,
// with its channel pointers, event offsets and musical position rebased.
// Real-time safe: nothing here allocates or locks.
#pragma once

#include <cstdint>

#include "AAX.h"
#include "AAX_IMIDINode.h"
#include "S_Alg_Context.h"

class AAX_ITransport;

// The transport as the AAX host reported it for this buffer. A value whose
// call failed is 0 and its flag false. Filled whole by
// CProcessBlock::Transport(); left unset until then, so that a buffer whose
// plug-in never asks costs nothing.
struct STransportSnapshot {
    bool present;  // there was a transport to ask
    bool hasTempo;
    bool hasMeter;
    bool hasTicks;
    bool hasSamplePosition;
    bool hasPlaying;
    double tempo;
    int32_t numerator;
    int32_t denominator;
    int64_t ticks;
    int64_t samplePosition;
    bool playing;
};

// Channels every context record carries: inputs, and main pair plus stems.
constexpr int kBlockInputChannels = kAlgBypassChannels;
constexpr int kBlockOutputChannels = 2 + 2 * kNumOutputStems;

class CProcessBlock {
public:
    // The whole buffer of one context record. Inline, and it copies only
    // what a slice changes: it runs once per buffer and instance, and the
    // rest is read from the record when asked.
    explicit CProcessBlock(const S_Alg_Context& context)
        : mFrames(context.mBufferLength != nullptr && *context.mBufferLength > 0 ? *context.mBufferLength : 0),
          mContext(&context),
          mInputs(context.mInputs),
          mOutputs(context.mOutputs)
    {
        if (context.mMidiIn != nullptr) {
            const AAX_CMidiStream* stream = context.mMidiIn->GetNodeBuffer();
            if (stream != nullptr && stream->mBuffer != nullptr) {
                mMidiBegin = stream->mBuffer;
                mMidiEnd = stream->mBuffer + stream->mBufferSize;
            }
        }
    }

    int32_t Frames() const { return mFrames; }
    // The context's sample rate; false when it carries none.
    bool HasContextRate() const { return mContext->mSampleRate != nullptr; }
    double ContextRate() const { return static_cast<double>(*mContext->mSampleRate); }
    float* const* Inputs() const { return mInputs; }    // kBlockInputChannels, or null
    float* const* Outputs() const { return mOutputs; }  // kBlockOutputChannels, or null
    AAX_IMIDINode* MidiOut() const { return mContext->mMidiOut; }
    // Where this block starts in the host's buffer, and whether it ends it.
    int32_t Start() const { return mStart; }
    bool IsLastSlice() const { return mLastSlice; }
    bool IsWholeBuffer() const { return mStart == 0 && mLastSlice; }

    // The posted MIDI packets (stamps count from the host buffer's start).
    bool HasMidi() const { return mMidiBegin != mMidiEnd; }
    const AAX_CMidiPacket* MidiBegin() const { return mMidiBegin; }
    const AAX_CMidiPacket* MidiEnd() const { return mMidiEnd; }
    // A packet's offset in this block; false when it belongs to another
    // slice. Late stamps belong to the last slice, as to an unsliced buffer.
    bool OffsetOf(const AAX_CMidiPacket& packet, int32_t& offset) const
    {
        const int64_t at = static_cast<int64_t>(packet.mTimestamp) - mStart;
        offset = static_cast<int32_t>(at);
        return mStart == 0 && mLastSlice ? true : at >= 0 && (at < mFrames || mLastSlice);
    }
    // Every packet of this block with its offset, in posted order.
    template <typename Fn>
    void ForEachPacket(Fn&& fn) const
    {
        int32_t offset = 0;
        for (const AAX_CMidiPacket* packet = mMidiBegin; packet < mMidiEnd; ++packet)
            if (OffsetOf(*packet, offset))
                fn(*packet, offset);
    }

    // Read from the host once per buffer, at first use; slices share it.
    const STransportSnapshot& Transport() const
    {
        return mWhole->mTransportRead ? mWhole->mTransport : mWhole->ReadTransport();
    }
    // The position at this block's start: the snapshot's, moved on by the
    // block's offset at `sampleRate` and the snapshot's tempo.
    double QuarterNotes(double sampleRate) const
    {
        const STransportSnapshot& t = Transport();
        double quarters = static_cast<double>(t.ticks) / static_cast<double>(kAAX_TicksPerQuarter);
        if (mStart > 0 && sampleRate > 0.0)
            quarters += static_cast<double>(mStart) / sampleRate * t.tempo / 60.0;
        return quarters;
    }
    int64_t SamplePosition() const { return Transport().samplePosition + mStart; }

    // The slice [start, start + frames) of this whole block; its channel
    // pointers live in `channels`, which must outlive it.
    struct SSliceChannels {
        float* inputs[kBlockInputChannels];
        float* outputs[kBlockOutputChannels];
    };
    CProcessBlock Slice(int32_t start, int32_t frames, SSliceChannels& channels) const;

private:
    CProcessBlock() = default;
    const STransportSnapshot& ReadTransport() const;

    // Side by side, so that a new block writes the three in one store.
    int32_t mStart = 0;
    bool mLastSlice = true;
    mutable bool mTransportRead = false;
    int32_t mFrames = 0;
    const S_Alg_Context* mContext = nullptr;
    float* const* mInputs = nullptr;
    float* const* mOutputs = nullptr;
    const AAX_CMidiPacket* mMidiBegin = nullptr;
    const AAX_CMidiPacket* mMidiEnd = nullptr;
    const CProcessBlock* mWhole = this;
    // The whole buffer's snapshot; a slice reads its parent's.
    mutable STransportSnapshot mTransport;
};

// The slices of a block longer than maxFrames. Out of line: it is the rare
// case, and its slice channels should not weigh on the usual one.
template <typename Fn>
__attribute__((noinline)) void ForEachLongSlice(const CProcessBlock& block, int32_t maxFrames, Fn& fn)
{
    const int32_t frames = block.Frames();
    CProcessBlock::SSliceChannels channels;
    for (int32_t start = 0; start < frames; start += maxFrames) {
        const int32_t length = frames - start < maxFrames ? frames - start : maxFrames;
        fn(block.Slice(start, length, channels));
    }
}

// Calls fn once per slice of at most maxFrames (once with the block itself
// when it fits, the usual case).
template <typename Fn>
void ForEachSlice(const CProcessBlock& block, int32_t maxFrames, Fn&& fn)
{
    if (block.Frames() <= maxFrames || maxFrames <= 0)
        fn(block);
    else
        ForEachLongSlice(block, maxFrames, fn);
}
