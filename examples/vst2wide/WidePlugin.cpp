// A VST 2 effect of 64 inputs and 64 outputs, as the IEM suite declares.
// Output c is input c plus a marker of 0.001 * (c + 1) while the switch is
// on. Inputs from 32 on must be silent (the AAX context has no such
// channels): anything else there adds 0.5 to output 0. It then scribbles on
// those inputs, as plug-ins that use their buffers as workspace do.
// Parameter 0 is the switch: it holds 0 or 1 whatever it is given.
// Parameter 1 is a plain level. Its chunk is the two values.
#include <atomic>
#include <cstring>
#include <new>

#include "vst2/VstInterface.h"

namespace {

constexpr VstInt32 kChannels = 64;
constexpr VstInt32 kSilentInputsFrom = 32;

struct SWide {
    AEffect effect{};
    // Set and saved on the main thread while the audio thread reads them.
    std::atomic<float> values[2] = {1.0f, 0.5f};
    float chunk[2] = {};
};

SWide* From(AEffect* effect) { return static_cast<SWide*>(effect->object); }

void CopyText(void* to, const char* text, size_t size)
{
    std::strncpy(static_cast<char*>(to), text, size - 1);
    static_cast<char*>(to)[size - 1] = 0;
}

VstIntPtr Dispatcher(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float)
{
    SWide* wide = From(effect);
    switch (opcode) {
    case effClose:
        delete wide;
        return 1;
    case effGetParamName:
        if (ptr != nullptr)
            CopyText(ptr, index == 0 ? "Marker" : "Level", 8);
        return 0;
    case effGetParamDisplay:
        if (ptr != nullptr && index >= 0 && index < 2)
            CopyText(ptr, index == 0 ? (wide->values[0] != 0.0f ? "on" : "off") : "level", 8);
        return 0;
    case effGetEffectName:
    case effGetProductString:
        if (ptr != nullptr)
            CopyText(ptr, "Wide", 32);
        return 1;
    case effGetVendorString:
        if (ptr != nullptr)
            CopyText(ptr, "Morvane Test", 64);
        return 1;
    case effGetPlugCategory:
        return 1;  // an effect
    case effGetVstVersion:
        return kVstVersion;
    case effGetChunk:
        if (ptr == nullptr)
            return 0;
        for (int i = 0; i < 2; ++i)
            wide->chunk[i] = wide->values[i].load();
        *static_cast<void**>(ptr) = wide->chunk;
        return sizeof(wide->chunk);
    case effSetChunk:
        if (ptr == nullptr || value != static_cast<VstIntPtr>(sizeof(wide->chunk)))
            return 0;
        float restored[2];
        std::memcpy(restored, ptr, sizeof(restored));
        for (int i = 0; i < 2; ++i)
            wide->values[i].store(restored[i]);
        return 1;
    default:
        return 0;
    }
}

void SetParameter(AEffect* effect, VstInt32 index, float value)
{
    if (index == 0)
        From(effect)->values[0] = value >= 0.5f ? 1.0f : 0.0f;
    else if (index == 1)
        From(effect)->values[1] = value;
}

float GetParameter(AEffect* effect, VstInt32 index)
{
    return index >= 0 && index < 2 ? From(effect)->values[index].load() : 0.0f;
}

void ProcessReplacing(AEffect* effect, float** inputs, float** outputs, VstInt32 frames)
{
    const bool marker = From(effect)->values[0] != 0.0f;
    bool leaked = false;
    for (VstInt32 c = kSilentInputsFrom; c < kChannels; ++c) {
        for (VstInt32 s = 0; s < frames; ++s) {
            leaked |= inputs[c][s] != 0.0f;
            inputs[c][s] = 1.0f;
        }
    }
    for (VstInt32 c = 0; c < kChannels; ++c) {
        const float add = (marker ? 0.001f * static_cast<float>(c + 1) : 0.0f) + (c == 0 && leaked ? 0.5f : 0.0f);
        for (VstInt32 s = 0; s < frames; ++s)
            outputs[c][s] = (c < kSilentInputsFrom ? inputs[c][s] : 0.0f) + add;
    }
}

}  // namespace

extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback host)
{
    if (host == nullptr)
        return nullptr;
    auto* wide = new (std::nothrow) SWide;
    if (wide == nullptr)
        return nullptr;
    AEffect& effect = wide->effect;
    effect.magic = kEffectMagic;
    effect.dispatcher = &Dispatcher;
    effect.setParameter = &SetParameter;
    effect.getParameter = &GetParameter;
    effect.processReplacing = &ProcessReplacing;
    effect.numPrograms = 1;
    effect.numParams = 2;
    effect.numInputs = kChannels;
    effect.numOutputs = kChannels;
    effect.flags = effFlagsCanReplacing | effFlagsProgramChunks;
    effect.object = wide;
    effect.uniqueID = 0x57696465;  // 'Wide'
    effect.version = 1;
    return &effect;
}
