// The MIDI packets the host posted to the input node for this buffer.
#pragma once

#include "AAX_IMIDINode.h"
#include "S_Alg_Context.h"

// Null when there are none. Inline, so that a buffer without MIDI (most of
// them) costs the fake host no call of its own.
inline const AAX_CMidiStream* PostedMidi(const S_Alg_Context& context)
{
    AAX_IMIDINode* node = context.mMidiIn;
    if (node == nullptr)
        return nullptr;
    const AAX_CMidiStream* stream = node->GetNodeBuffer();
    return stream != nullptr && stream->mBuffer != nullptr && stream->mBufferSize != 0 ? stream : nullptr;
}
