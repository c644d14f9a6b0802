#include "fakehost/ProcessBlock.h"

#include "AAX_IMIDINode.h"
#include "AAX_ITransport.h"

void CProcessBlock::ReadMidiIn(AAX_IMIDINode& node)
{
    const AAX_CMidiStream* stream = node.GetNodeBuffer();
    if (stream != nullptr && stream->mBuffer != nullptr && stream->mBufferSize != 0) {
        mMidiBegin = stream->mBuffer;
        mMidiEnd = stream->mBuffer + stream->mBufferSize;
    }
}

const STransportSnapshot& CProcessBlock::Transport() const
{
    const CProcessBlock& whole = *mWhole;
    if (whole.mTransportRead)
        return whole.mTransport;
    whole.mTransportRead = true;
    STransportSnapshot& t = whole.mTransport;
    t = STransportSnapshot{};
    AAX_ITransport* source = whole.mTransportNode != nullptr ? whole.mTransportNode->GetTransport() : nullptr;
    if (source == nullptr)
        return t;
    t.present = true;
    // Read into locals: a failed call may have written anything.
    double tempo = 0.0;
    if ((t.hasTempo = source->GetCurrentTempo(&tempo) == AAX_SUCCESS))
        t.tempo = tempo;
    int32_t numerator = 0, denominator = 0;
    if ((t.hasMeter = source->GetCurrentMeter(&numerator, &denominator) == AAX_SUCCESS)) {
        t.numerator = numerator;
        t.denominator = denominator;
    }
    int64_t ticks = 0;
    if ((t.hasTicks = source->GetCurrentTickPosition(&ticks) == AAX_SUCCESS))
        t.ticks = ticks;
    int64_t samples = 0;
    if ((t.hasSamplePosition = source->GetCurrentNativeSampleLocation(&samples) == AAX_SUCCESS))
        t.samplePosition = samples;
    bool playing = false;
    if ((t.hasPlaying = source->IsTransportPlaying(&playing) == AAX_SUCCESS))
        t.playing = playing;
    return t;
}

double CProcessBlock::QuarterNotes(double sampleRate) const
{
    const STransportSnapshot& t = Transport();
    double quarters = static_cast<double>(t.ticks) / static_cast<double>(kAAX_TicksPerQuarter);
    if (mStart > 0 && sampleRate > 0.0)
        quarters += static_cast<double>(mStart) / sampleRate * t.tempo / 60.0;
    return quarters;
}

CProcessBlock CProcessBlock::Slice(int32_t start, int32_t frames, SSliceChannels& channels) const
{
    CProcessBlock slice;
    slice.mFrames = frames;
    slice.mHasRate = mHasRate;
    slice.mRate = mRate;
    slice.mMidiOut = mMidiOut;
    slice.mMidiBegin = mMidiBegin;
    slice.mMidiEnd = mMidiEnd;
    slice.mStart = start;
    slice.mLastSlice = start + frames >= mFrames;
    slice.mWhole = mWhole;
    if (mInputs != nullptr) {
        for (int c = 0; c < kBlockInputChannels; ++c)
            channels.inputs[c] = mInputs[c] != nullptr ? mInputs[c] + start : nullptr;
        slice.mInputs = channels.inputs;
    }
    if (mOutputs != nullptr) {
        for (int c = 0; c < kBlockOutputChannels; ++c)
            channels.outputs[c] = mOutputs[c] != nullptr ? mOutputs[c] + start : nullptr;
        slice.mOutputs = channels.outputs;
    }
    return slice;
}
