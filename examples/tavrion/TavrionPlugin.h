// Tavrion V2 as a VST 2 effect: the AEffect record and the dispatcher glue
// around the engine.
#pragma once

#include <string>
#include <vector>

#include "TavrionEngine.h"
#include "vst2/VstInterface.h"
#ifdef MRV_HAS_X11_EDITOR
#include "X11TestEditor.h"
#endif

namespace Tavrion {

constexpr VstInt32 kUniqueID = 0x54765632;  // 'TvV2'
constexpr VstInt32 kVendorVersion = 0x010100;
constexpr short kEditorWidth = 400;
constexpr short kEditorHeight = 240;

class CPlugin {
public:
    explicit CPlugin(audioMasterCallback host);

    AEffect* Effect() { return &mEffect; }

    static CPlugin* From(AEffect* effect) { return static_cast<CPlugin*>(effect->object); }

    VstIntPtr Dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt);
    void ProcessReplacing(float** outputs, VstInt32 frames);
    void SetParameter(VstInt32 index, float value) { mEngine.SetParameter(index, value); }
    float GetParameter(VstInt32 index) const { return mEngine.GetParameter(index); }

private:
    VstIntPtr ProcessEvents(const VstEvents* events);
    VstIntPtr GetChunk(void** data);
    VstIntPtr SetChunk(const void* data, VstIntPtr size);
    VstIntPtr OpenEditor(void* parent);
    void CloseEditor();
    // The editor's controls: the button mutes (volume to 0) as a user's edit
    // would, the other grows the editor by asking the host for a new size.
    void EditVolumeFromEditor(float value);
    void GrowEditor();

    AEffect mEffect{};
    audioMasterCallback mHost;
    CEngine mEngine;
    std::vector<unsigned char> mChunk;
    std::string mProgramName = "Init";
    ERect mEditorRect{0, 0, kEditorHeight, kEditorWidth};
    bool mEditorOpen = false;
#ifdef MRV_HAS_X11_EDITOR
    MrvEditor::CX11TestEditor mEditor;
#endif
};

}  // namespace Tavrion
