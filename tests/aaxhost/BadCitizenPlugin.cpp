// A VST 2 instrument with one fault chosen at build time, so that each check
// of `aaxhost validate` is seen to fail on the fault it exists for:
//   BAD_MODE 1: allocates and frees in every process call
//   BAD_MODE 2: writes NaN above 100 kHz (a table sized for lower rates)
//   BAD_MODE 3: rebuilds its gain table in setParameter while process reads
//               it, with no lock (a data race; NaN shows mid-rebuild)
//   BAD_MODE 4: waits forever in effSetChunk for a chunk it cannot read
// Otherwise it is well behaved: a quiet sine while a note is held.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <thread>

#include "vst2/VstInterface.h"

#define BAD_EXPORT extern "C" __attribute__((visibility("default")))

namespace {

constexpr int kParams = 2;
constexpr int kTable = 1024;
constexpr uint32_t kChunkMagic = 0x42616443;  // 'BadC'

struct SChunk {
    uint32_t magic;
    float values[kParams];
    uint32_t sum;
};

uint32_t Sum(const SChunk& c)
{
    uint32_t s = c.magic;
    for (float v : c.values) {
        uint32_t bits;
        std::memcpy(&bits, &v, sizeof bits);
        s = s * 31u + bits;
    }
    return s;
}

class CBadCitizen {
public:
    CBadCitizen()
    {
        mEffect.magic = kEffectMagic;
        mEffect.dispatcher = [](AEffect* e, VstInt32 op, VstInt32 i, VstIntPtr v, void* p, float o) {
            return From(e)->Dispatch(op, i, v, p, o);
        };
        mEffect.setParameter = [](AEffect* e, VstInt32 i, float v) { From(e)->SetParameter(i, v); };
        mEffect.getParameter = [](AEffect* e, VstInt32 i) { return From(e)->mValues[i >= 0 && i < kParams ? i : 0]; };
        mEffect.processReplacing = [](AEffect* e, float** in, float** out, VstInt32 n) { From(e)->Process(in, out, n); };
        mEffect.numParams = kParams;
        mEffect.numPrograms = 1;
        mEffect.numInputs = 0;
        mEffect.numOutputs = 2;
        mEffect.flags = effFlagsCanReplacing | effFlagsIsSynth | effFlagsProgramChunks;
        mEffect.object = this;
        mEffect.uniqueID = 0x42616443 + BAD_MODE;
        mEffect.version = 1;
        RebuildTable();
    }
    AEffect* Effect() { return &mEffect; }

private:
    static CBadCitizen* From(AEffect* e) { return static_cast<CBadCitizen*>(e->object); }

    VstIntPtr Dispatch(VstInt32 op, VstInt32 index, VstIntPtr value, void* ptr, float opt)
    {
        switch (op) {
        case effClose: delete this; return 1;
        case effSetSampleRate: mRate = opt; return 1;
        case effGetParamName: std::strncpy(static_cast<char*>(ptr), index == 0 ? "Gain" : "Tone", 8); return 0;
        case effGetParamLabel: static_cast<char*>(ptr)[0] = '\0'; return 0;
        case effGetParamDisplay:
            std::snprintf(static_cast<char*>(ptr), 8, "%.3f", mValues[index >= 0 && index < kParams ? index : 0]);
            return 0;
        case effGetEffectName: std::strncpy(static_cast<char*>(ptr), "Bad Citizen", 32); return 1;
        case effGetVendorString: std::strncpy(static_cast<char*>(ptr), "Morvane", 64); return 1;
        case effGetProductString: std::strncpy(static_cast<char*>(ptr), "Bad Citizen", 64); return 1;
        case effGetPlugCategory: return 2;  // synth
        case effGetVstVersion: return kVstVersion;
        case effCanDo: return ptr && std::strcmp(static_cast<const char*>(ptr), "receiveVstMidiEvent") == 0 ? 1 : 0;
        case effProcessEvents: return ProcessEvents(static_cast<const VstEvents*>(ptr));
        case effGetChunk:
            mChunk.magic = kChunkMagic;
            std::memcpy(mChunk.values, mValues, sizeof mValues);
            mChunk.sum = Sum(mChunk);
            *static_cast<void**>(ptr) = &mChunk;
            return sizeof mChunk;
        case effSetChunk: return SetChunk(ptr, value);
        default: (void)opt; return 0;
        }
    }

    VstIntPtr ProcessEvents(const VstEvents* events)
    {
        for (VstInt32 i = 0; events && i < events->numEvents; ++i) {
            const VstEvent* e = events->events[i];
            if (e->type != kVstMidiType)
                continue;
            const auto* m = reinterpret_cast<const VstMidiEvent*>(e);
            const int status = m->midiData[0] & 0xF0;
            if (status == 0x90 && m->midiData[2] > 0)
                ++mHeld;
            else if ((status == 0x80 || status == 0x90) && mHeld > 0)
                --mHeld;
        }
        return 1;
    }

    VstIntPtr SetChunk(const void* data, VstIntPtr size)
    {
        SChunk c{};
        bool readable = data && size == static_cast<VstIntPtr>(sizeof c);
        if (readable) {
            std::memcpy(&c, data, sizeof c);
            readable = c.magic == kChunkMagic && c.sum == Sum(c);
        }
#if BAD_MODE == 4
        // "The state will make sense once the file has finished loading."
        while (!readable)
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
#endif
        if (!readable)
            return 0;
        for (int i = 0; i < kParams; ++i)
            SetParameter(i, c.values[i]);
        return 1;
    }

    void SetParameter(VstInt32 index, float value)
    {
        if (index < 0 || index >= kParams)
            return;
        mValues[index] = value;
        RebuildTable();
    }

    void RebuildTable()
    {
        volatile float* table = mTable;
#if BAD_MODE == 3
        // Cleared first, then filled: a reader in between sees the holes.
        for (int i = 0; i < kTable; ++i)
            table[i] = std::numeric_limits<float>::quiet_NaN();
#endif
        for (int i = 0; i < kTable; ++i)
            table[i] = 0.1f * mValues[0] * static_cast<float>(i) / kTable;
    }

    void Process(float**, float** out, VstInt32 frames)
    {
#if BAD_MODE == 1
        float* scratch = new float[static_cast<size_t>(frames) + 1];
#endif
        const volatile float* table = mTable;
        const double step = 440.0 / mRate;
        for (VstInt32 i = 0; i < frames; ++i) {
            float s = mHeld > 0 ? static_cast<float>(std::sin(6.283185307179586 * mPhase)) * table[kTable / 2] : 0.0f;
#if BAD_MODE == 2
            if (mRate > 100000.0f)
                s = std::numeric_limits<float>::quiet_NaN();
#endif
#if BAD_MODE == 3
            s += table[i % kTable] * 0.0f;  // a NaN from a half-built table survives this
#endif
#if BAD_MODE == 1
            scratch[i] = s;
#endif
            mPhase += step;
            if (mPhase >= 1.0)
                mPhase -= 1.0;
            out[0][i] = out[1][i] = s;
        }
#if BAD_MODE == 1
        delete[] scratch;
#endif
    }

    AEffect mEffect{};
    float mValues[kParams] = {0.5f, 0.5f};
    float mTable[kTable] = {};
    float mRate = 44100.0f;
    double mPhase = 0.0;
    int mHeld = 0;
    SChunk mChunk{};
};

}  // namespace

BAD_EXPORT AEffect* VSTPluginMain(audioMasterCallback host)
{
    if (!host || host(nullptr, audioMasterVersion, 0, 0, nullptr, 0.0f) == 0)
        return nullptr;
    return (new CBadCitizen)->Effect();
}
