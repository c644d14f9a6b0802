// The per-instance record the host fills from the registered fields and
// passes to the algorithm callback. One pointer per field, in field order.
#pragma once

#include <cstdint>

#include "AAX.h"

class AAX_IMIDINode;

struct S_Alg_Context {
    int32_t* mBypass;                 // 0: master bypass packet, non-zero = bypassed
    AAX_CSampleRate* mSampleRate;     // 1
    AAX_IMIDINode* mMidiIn;           // 2: local MIDI input node
    AAX_IMIDINode* mMidiOut;          // 3: local MIDI output node
    AAX_IMIDINode* mMidiTransport;    // 4: transport node
    float* const* mInputs;            // 5: input channels
    float* const* mOutputs;           // 6: main stereo + 16 stereo stems = 34 channels
    int32_t* mBufferLength;           // 7: samples in this call
    void* mPrivateData;               // 8: 8-byte block holding the AAXWrapper_Parameters*
};

enum EAlgFieldIndex : int32_t {
    kAlgField_Bypass = 0,
    kAlgField_SampleRate = 1,
    kAlgField_MidiIn = 2,
    kAlgField_MidiOut = 3,
    kAlgField_MidiTransport = 4,
    kAlgField_AudioIn = 5,
    kAlgField_AudioOut = 6,
    kAlgField_BufferLength = 7,
    kAlgField_PrivateData = 8,
};

// Channels touched by bypass and silence: main pair plus sixteen stereo stems.
constexpr int kAlgBypassChannels = 32;
constexpr int kNumOutputStems = 16;
