// A MIDI node of an algorithm context. The host owns it and places its
// address in the context field registered with AddMIDINode.
#pragma once

#include "AAX.h"
#include "AAX_ITransport.h"

class AAX_IMIDINode {
public:
    virtual ~AAX_IMIDINode() = default;
    // Packets received for the current buffer (input and transport nodes).
    virtual AAX_CMidiStream* GetNodeBuffer() = 0;
    // Sends one packet out of the plug-in (output nodes).
    virtual AAX_Result PostMIDIPacket(AAX_CMidiPacket* packet) = 0;
    // The host transport (transport nodes).
    virtual AAX_ITransport* GetTransport() = 0;
};
