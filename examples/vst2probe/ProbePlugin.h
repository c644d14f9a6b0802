// A VST 2 test plug-in that records what its host does to it and, driven by
// MIDI, calls back into the host (automation, MIDI out, window size).
//
// Controls (any MIDI channel):
//   CC 20..23, value v   -> audioMasterAutomate(parameter cc-20, v/127)
//   CC 24, value v       -> audioMasterSizeWindow(width 200+v, height 100+v)
//   CC 25, value v       -> audioMasterSizeWindow(width 0, height 100+v)
//   note on / note off   -> echoed unchanged through audioMasterProcessEvents
// All are carried out in the next processReplacing, in arrival order.
// Output channel c (of the declared outputs) holds the constant (c+1)/64 * Alpha.
// Environment: VST2PROBE_LOG (record file), VST2PROBE_VERSION (vendor
// version, default 0x01020304), VST2PROBE_CHUNK_PAD (extra chunk bytes),
// VST2PROBE_NO_RECT=1 (effEditGetRect gives no rectangle), VST2PROBE_OUTPUTS
// (number of outputs declared, default 34).
#pragma once

#include <atomic>
#include <vector>

#include "ProbeRecorder.h"
#include "vst2/VstInterface.h"
#ifdef MRV_HAS_X11_EDITOR
#include "X11TestEditor.h"
#endif

namespace Vst2Probe {

constexpr VstInt32 kUniqueID = 0x56507262;  // 'VPrb'
constexpr int kNumParams = 4;
constexpr int kNumPrograms = 2;
constexpr int kNumInputs = 2;
constexpr int kNumOutputs = 34;
constexpr int kMaxActions = 256;

class CProbe {
public:
    CProbe(audioMasterCallback host, const char* entryName);

    AEffect* Effect() { return &mEffect; }
    static CProbe* From(AEffect* effect) { return static_cast<CProbe*>(effect->object); }

    VstIntPtr Dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);
    void ProcessReplacing(float** inputs, float** outputs, VstInt32 frames);
    void SetParameter(VstInt32 index, float value);
    VstIntPtr ParameterProperties(VstInt32 index, VstParameterProperties* properties);
    float GetParameter(VstInt32 index);
    CRecorder& Recorder() { return mRecorder; }

private:
    struct Action {
        VstMidiEvent event;
    };

    VstIntPtr ProcessEvents(const VstEvents* events);
    VstIntPtr GetChunk(void** data);
    VstIntPtr SetChunk(VstInt32 index, const void* data, VstIntPtr size);
    VstIntPtr CanDo(const char* what);
    void RunActions(VstInt32 frames);

    AEffect mEffect{};
    audioMasterCallback mHost;
    CRecorder mRecorder;
    // Set on the host's main thread, read by process on the audio thread.
    std::atomic<float> mParams[kNumParams] = {0.5f, 0.25f, 0.75f, 0.0f};
    std::vector<float> mExtraParams;  // VST2PROBE_EXTRA_PARAMS more, after the four
    int mProgram = 0;
    std::vector<unsigned char> mChunk;
    ERect mRect{0, 0, 150, 300};
#ifdef MRV_HAS_X11_EDITOR
    // On Linux, drawn into the host's X11 window; its button is a user edit
    // of parameter 0 (begin, automate, end), its other control grows it.
    MrvEditor::CX11TestEditor mEditor;
    void OpenX11Editor(void* parent);
#endif
    Action mActions[kMaxActions];
    int mActionCount = 0;
};

// Creates the effect for one of the entry functions.
AEffect* CreateProbe(audioMasterCallback host, const char* entryName);

}  // namespace Vst2Probe
