#include "fakehost/ProcessBlock.h"

#include "AAX_IMIDINode.h"
#include "AAX_ITransport.h"

const STransportSnapshot& CProcessBlock::ReadTransport() const
{
    mTransportRead = true;
    STransportSnapshot& t = mTransport;
    AAX_IMIDINode* node = mContext->mMidiTransport;
    AAX_ITransport* source = node != nullptr ? node->GetTransport() : nullptr;
    t.present = source != nullptr;
    if (source == nullptr) {
        t = STransportSnapshot{};
        return t;
    }
    // Straight into the snapshot; what a failed call may have written is
    // put back to 0.
    t.hasTempo = source->GetCurrentTempo(&t.tempo) == AAX_SUCCESS;
    if (!t.hasTempo)
        t.tempo = 0.0;
    t.hasMeter = source->GetCurrentMeter(&t.numerator, &t.denominator) == AAX_SUCCESS;
    if (!t.hasMeter)
        t.numerator = t.denominator = 0;
    t.hasTicks = source->GetCurrentTickPosition(&t.ticks) == AAX_SUCCESS;
    if (!t.hasTicks)
        t.ticks = 0;
    t.hasSamplePosition = source->GetCurrentNativeSampleLocation(&t.samplePosition) == AAX_SUCCESS;
    if (!t.hasSamplePosition)
        t.samplePosition = 0;
    t.hasPlaying = source->IsTransportPlaying(&t.playing) == AAX_SUCCESS;
    if (!t.hasPlaying)
        t.playing = false;
    return t;
}

CProcessBlock CProcessBlock::Slice(int32_t start, int32_t frames, SSliceChannels& channels) const
{
    CProcessBlock slice;
    slice.mContext = mContext;
    slice.mFrames = frames;
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
