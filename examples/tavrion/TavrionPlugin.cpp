#include "TavrionPlugin.h"

#include <cstdio>
#include <cstring>

#include "TavrionBankChunk.h"

namespace Tavrion {
namespace {

constexpr size_t kNameBufferSize = 24;
constexpr size_t kLabelBufferSize = 8;
constexpr VstInt32 kPlugCategorySynth = 2;

VstIntPtr DispatcherProc(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt)
{
    CPlugin* plugin = CPlugin::From(effect);
    if (opcode == effClose) {
        delete plugin;
        return 1;
    }
    return plugin->Dispatch(opcode, index, value, ptr, opt);
}

void ProcessReplacingProc(AEffect* effect, float**, float** outputs, VstInt32 frames)
{
    CPlugin::From(effect)->ProcessReplacing(outputs, frames);
}

void SetParameterProc(AEffect* effect, VstInt32 index, float value) { CPlugin::From(effect)->SetParameter(index, value); }

float GetParameterProc(AEffect* effect, VstInt32 index) { return CPlugin::From(effect)->GetParameter(index); }

void CopyText(void* destination, size_t size, const char* text)
{
    if (destination != nullptr)
        std::snprintf(static_cast<char*>(destination), size, "%s", text);
}

}  // namespace

CPlugin::CPlugin(audioMasterCallback host) : mHost(host)
{
    mEffect.magic = kEffectMagic;
    mEffect.dispatcher = &DispatcherProc;
    mEffect.setParameter = &SetParameterProc;
    mEffect.getParameter = &GetParameterProc;
    mEffect.processReplacing = &ProcessReplacingProc;
    mEffect.numPrograms = 1;
    mEffect.numParams = kNumParameters;
    mEffect.numInputs = 0;
    mEffect.numOutputs = kNumOutputs;
    mEffect.flags = effFlagsHasEditor | effFlagsCanReplacing | effFlagsProgramChunks | effFlagsIsSynth;
    mEffect.ioRatio = 1.0f;
    mEffect.object = this;
    mEffect.uniqueID = kUniqueID;
    mEffect.version = kVendorVersion;
    if (mHost != nullptr) {
        // The rate the host runs at, when it tells us before effSetSampleRate.
        const VstIntPtr rate = mHost(&mEffect, audioMasterGetSampleRate, 0, 0, nullptr, 0.0f);
        if (rate > 0)
            mEngine.SetSampleRate(static_cast<double>(rate));
    }
}

VstIntPtr CPlugin::Dispatch(VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float opt)
{
    switch (opcode) {
    case effOpen: return 0;
    case effSetProgram: return 0;
    case effGetProgram: return 0;
    case effSetProgramName:
        if (ptr != nullptr)
            mProgramName.assign(static_cast<const char*>(ptr), strnlen(static_cast<const char*>(ptr), kNameBufferSize - 1));
        return 0;
    case effGetProgramName: CopyText(ptr, kNameBufferSize, mProgramName.c_str()); return 0;
    case effGetProgramNameIndexed:
        if (index != 0)
            return 0;
        CopyText(ptr, kNameBufferSize, mProgramName.c_str());
        return 1;
    case effGetParamName:
        if (index < 0 || index >= kNumParameters)
            return 0;
        CopyText(ptr, kNameBufferSize, kParameterInfo[index].name);
        return 0;
    case effGetParamLabel:
        if (index < 0 || index >= kNumParameters)
            return 0;
        CopyText(ptr, kLabelBufferSize, kParameterInfo[index].label);
        return 0;
    case effGetParamDisplay:
        if (index < 0 || index >= kNumParameters || ptr == nullptr)
            return 0;
        FormatParameterDisplay(index, mEngine.GetParameter(index), static_cast<char*>(ptr), kLabelBufferSize);
        return 0;
    case effCanBeAutomated: return index >= 0 && index < kNumParameters ? 1 : 0;
    case effSetSampleRate: mEngine.SetSampleRate(opt); return 0;
    case effSetBlockSize: return 0;
    case effMainsChanged:
        // Resuming starts from silence, as after a transport reset.
        if (value != 0)
            mEngine.AllNotesOff();
        return 0;
    case effEditGetRect:
        if (ptr == nullptr)
            return 0;
        *static_cast<ERect**>(ptr) = &mEditorRect;
        return 1;
    case effEditOpen: return OpenEditor(ptr);
    case effEditClose: CloseEditor(); return 0;
    case effEditIdle:
#ifdef MRV_HAS_X11_EDITOR
        mEditor.Idle();
#endif
        return 0;
    case effGetChunk: return GetChunk(static_cast<void**>(ptr));
    case effSetChunk: return SetChunk(ptr, value);
    case effProcessEvents: return ProcessEvents(static_cast<const VstEvents*>(ptr));
    case effGetPlugCategory: return kPlugCategorySynth;
    case effGetEffectName: CopyText(ptr, kVstMaxEffectNameLen, "Tavrion V2"); return 1;
    case effGetVendorString: CopyText(ptr, kVstMaxVendorStrLen, "Morvane"); return 1;
    case effGetProductString: CopyText(ptr, kVstMaxProductStrLen, "Tavrion"); return 1;
    case effGetVendorVersion: return kVendorVersion;
    case effGetVstVersion: return kVstVersion;
    case effCanDo: {
        const char* what = static_cast<const char*>(ptr);
        if (what == nullptr)
            return 0;
        if (std::strcmp(what, "receiveVstEvents") == 0 || std::strcmp(what, "receiveVstMidiEvent") == 0)
            return 1;
        if (std::strcmp(what, "sendVstEvents") == 0 || std::strcmp(what, "sendVstMidiEvent") == 0)
            return -1;
        return 0;
    }
    case effGetTailSize: return 0;
    default: return 0;
    }
}

VstIntPtr CPlugin::ProcessEvents(const VstEvents* events)
{
    if (events == nullptr)
        return 0;
    for (VstInt32 i = 0; i < events->numEvents; ++i) {
        const VstEvent* event = events->events[i];
        if (event == nullptr || event->type != kVstMidiType)
            continue;
        const VstMidiEvent* midi = reinterpret_cast<const VstMidiEvent*>(event);
        unsigned char data[3];
        std::memcpy(data, midi->midiData, 3);
        mEngine.QueueMidi(midi->deltaFrames, data);
    }
    return 1;
}

void CPlugin::ProcessReplacing(float** outputs, VstInt32 frames) { mEngine.Render(outputs, frames); }

VstIntPtr CPlugin::GetChunk(void** data)
{
    if (data == nullptr)
        return 0;
    float values[kNumParameters];
    mEngine.CopyParameters(values);
    WriteBankChunk(values, mChunk);
    *data = mChunk.data();
    return static_cast<VstIntPtr>(mChunk.size());
}

VstIntPtr CPlugin::SetChunk(const void* data, VstIntPtr size)
{
    if (size <= 0)
        return 0;
    float values[kNumParameters];
    mEngine.CopyParameters(values);
    if (!ReadBankChunk(data, static_cast<size_t>(size), values))
        return 0;
    mEngine.SetAllParameters(values);
    return 1;
}

VstIntPtr CPlugin::OpenEditor(void* parent)
{
    mEditorOpen = true;
#ifdef MRV_HAS_X11_EDITOR
    // On Linux the parent is the host's X11 window ID. Without a display the
    // editor stays a rectangle, as before.
    MrvEditor::CX11TestEditor::SHandlers handlers;
    handlers.onButton = [this] { EditVolumeFromEditor(0.0f); };
    handlers.onGrow = [this] { GrowEditor(); };
    mEditor.Open(reinterpret_cast<uintptr_t>(parent), mEditorRect.right - mEditorRect.left,
                 mEditorRect.bottom - mEditorRect.top, std::move(handlers));
#else
    (void)parent;
#endif
    return 1;
}

void CPlugin::CloseEditor()
{
    mEditorOpen = false;
#ifdef MRV_HAS_X11_EDITOR
    mEditor.Close();
#endif
}

void CPlugin::EditVolumeFromEditor(float value)
{
    mHost(&mEffect, audioMasterBeginEdit, kParamVolume, 0, nullptr, 0.0f);
    mEngine.SetParameter(kParamVolume, value);
    mHost(&mEffect, audioMasterAutomate, kParamVolume, 0, nullptr, value);
    mHost(&mEffect, audioMasterEndEdit, kParamVolume, 0, nullptr, 0.0f);
}

void CPlugin::GrowEditor()
{
#ifdef MRV_HAS_X11_EDITOR
    mEditorRect.bottom = static_cast<short>(mEditorRect.bottom + MrvEditor::kGrowStep);
    const int width = mEditorRect.right - mEditorRect.left;
    const int height = mEditorRect.bottom - mEditorRect.top;
    mHost(&mEffect, audioMasterSizeWindow, width, height, nullptr, 0.0f);
    mEditor.Resize(width, height);
#endif
}

}  // namespace Tavrion

// Both names are the published entry points; hosts try them in turn.
extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback host)
{
    if (host == nullptr || host(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f) == 0)
        return nullptr;
    return (new Tavrion::CPlugin(host))->Effect();
}

// The legacy name "main" cannot be declared as a C++ function of this type,
// so it is bound to the symbol through an assembler label.
extern "C" __attribute__((visibility("default"))) AEffect* TavrionLegacyMain(audioMasterCallback host) __asm__("main");
extern "C" AEffect* TavrionLegacyMain(audioMasterCallback host) { return VSTPluginMain(host); }
