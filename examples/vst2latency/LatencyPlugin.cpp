// A VST 2 effect of two inputs and two outputs that delays its input by
// exactly the latency it declares, as a look-ahead limiter does: the output
// compensated by that latency is the input again. Parameter 0 sets it:
// round(value * kMaxLatency) samples (0.25, the default, gives 500). A new
// value changes initialDelay and tells the host with audioMasterIOChanged;
// the delay itself follows at the next process call. Its tail is declared as
// kTailSamples (effGetTailSize).
#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>
#include <string>
#include <vector>

#include "vst2/VstInterface.h"

namespace {

constexpr VstInt32 kChannels = 2;
constexpr VstInt32 kMaxLatency = 2000;
constexpr VstIntPtr kTailSamples = 144000;

struct SLatency {
    AEffect effect{};
    audioMasterCallback host = nullptr;
    std::atomic<float> value{0.25f};
    // One ring per channel, long enough for the largest delay.
    std::vector<float> ring[kChannels];
    size_t write = 0;
    float chunk = 0.0f;
};

SLatency* From(AEffect* effect) { return static_cast<SLatency*>(effect->object); }

VstInt32 LatencyOf(float value)
{
    return static_cast<VstInt32>(std::lround(std::clamp(value, 0.0f, 1.0f) * static_cast<float>(kMaxLatency)));
}

void CopyText(void* to, const char* text, size_t size) { std::snprintf(static_cast<char*>(to), size, "%s", text); }

void SetParameter(AEffect* effect, VstInt32 index, float value)
{
    if (index != 0)
        return;
    SLatency* plugin = From(effect);
    plugin->value = value;
    const VstInt32 latency = LatencyOf(value);
    if (latency != effect->initialDelay) {
        effect->initialDelay = latency;
        plugin->host(effect, audioMasterIOChanged, 0, 0, nullptr, 0.0f);
    }
}

VstIntPtr Dispatcher(AEffect* effect, VstInt32 opcode, VstInt32 index, VstIntPtr value, void* ptr, float)
{
    SLatency* plugin = From(effect);
    switch (opcode) {
    case effClose:
        delete plugin;
        return 1;
    case effMainsChanged:
        if (value != 0)
            for (auto& ring : plugin->ring)
                std::fill(ring.begin(), ring.end(), 0.0f);
        return 0;
    case effGetParamName:
        if (ptr != nullptr)
            CopyText(ptr, "Latency", 8);
        return 0;
    case effGetParamDisplay:
        if (ptr != nullptr)
            CopyText(ptr, std::to_string(LatencyOf(plugin->value)).c_str(), 8);
        return 0;
    case effGetEffectName:
    case effGetProductString:
        if (ptr != nullptr)
            CopyText(ptr, "Latency", 32);
        return 1;
    case effGetVendorString:
        if (ptr != nullptr)
            CopyText(ptr, "Morvane Test", 64);
        return 1;
    case effGetTailSize:
        return kTailSamples;
    case effGetPlugCategory:
        return 1;  // an effect
    case effGetVstVersion:
        return kVstVersion;
    case effGetChunk:
        if (ptr == nullptr)
            return 0;
        plugin->chunk = plugin->value;
        *static_cast<void**>(ptr) = &plugin->chunk;
        return sizeof(plugin->chunk);
    case effSetChunk:
        if (ptr == nullptr || value != static_cast<VstIntPtr>(sizeof(float)))
            return 0;
        float restored;
        std::memcpy(&restored, ptr, sizeof(restored));
        SetParameter(effect, 0, restored);
        return 1;
    default:
        (void)index;
        return 0;
    }
}

float GetParameter(AEffect* effect, VstInt32 index) { return index == 0 ? From(effect)->value.load() : 0.0f; }

void ProcessReplacing(AEffect* effect, float** inputs, float** outputs, VstInt32 frames)
{
    SLatency* plugin = From(effect);
    const size_t size = plugin->ring[0].size();
    const size_t delay = static_cast<size_t>(LatencyOf(plugin->value));
    size_t write = plugin->write;
    for (VstInt32 s = 0; s < frames; ++s) {
        const size_t read = (write + size - delay) % size;
        for (VstInt32 c = 0; c < kChannels; ++c) {
            plugin->ring[c][write] = inputs[c][s];
            outputs[c][s] = plugin->ring[c][read];
        }
        write = (write + 1) % size;
    }
    plugin->write = write;
}

}  // namespace

extern "C" __attribute__((visibility("default"))) AEffect* VSTPluginMain(audioMasterCallback host)
{
    if (host == nullptr)
        return nullptr;
    auto* plugin = new (std::nothrow) SLatency;
    if (plugin == nullptr)
        return nullptr;
    plugin->host = host;
    for (auto& ring : plugin->ring)
        ring.assign(kMaxLatency + 1, 0.0f);
    AEffect& effect = plugin->effect;
    effect.magic = kEffectMagic;
    effect.dispatcher = &Dispatcher;
    effect.setParameter = &SetParameter;
    effect.getParameter = &GetParameter;
    effect.processReplacing = &ProcessReplacing;
    effect.numPrograms = 1;
    effect.numParams = 1;
    effect.numInputs = kChannels;
    effect.numOutputs = kChannels;
    effect.flags = effFlagsCanReplacing | effFlagsProgramChunks;
    effect.initialDelay = LatencyOf(plugin->value);
    effect.object = plugin;
    effect.uniqueID = 0x4C61746E;  // 'Latn'
    effect.version = 1;
    return &effect;
}
