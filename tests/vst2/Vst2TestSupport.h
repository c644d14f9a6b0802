// Test doubles and helpers for the VST 2 back end tests: an owner that records
// automation, MIDI nodes, a transport, a view container, an algorithm context
// with real buffers, the probe plug-in's record file and a log capture.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "AAX_CEffectParameters.h"
#include "AAX_IMIDINode.h"
#include "AAX_ITransport.h"
#include "AAX_IViewContainer.h"
#include "S_Alg_Context.h"
#include "logger/CLog.h"
#include "vst2/CFakeHostVST2.h"

namespace Vst2Test {

// Folder of the plug-ins this build makes (vst2probe*.so, Tavrion V2.vst).
std::string BuiltPlugin(const std::string& name);
std::string TavrionPath();
constexpr const char* kDebianVstDir = "/usr/lib/vst/";
bool FileExists(const std::string& path);

class CTestOwner : public AAX_CEffectParameters {
public:
    ~CTestOwner() override = default;
    AAX_Result SetParameterNormalizedValue(AAX_CParamID id, double value) override
    {
        automated.emplace_back(id != nullptr ? id : "", value);
        return AAX_SUCCESS;
    }
    std::vector<std::pair<std::string, double>> automated;
};

class CFakeTransport : public AAX_ITransport {
public:
    AAX_Result GetCurrentTempo(double* out) const override { *out = tempo; return AAX_SUCCESS; }
    AAX_Result GetCurrentMeter(int32_t* num, int32_t* den) const override
    {
        *num = numerator;
        *den = denominator;
        return AAX_SUCCESS;
    }
    AAX_Result IsTransportPlaying(bool* out) const override { *out = playing; return AAX_SUCCESS; }
    AAX_Result GetCurrentTickPosition(int64_t* out) const override { *out = ticks; return AAX_SUCCESS; }
    AAX_Result GetCurrentLoopPosition(bool* looping, int64_t* start, int64_t* end) const override
    {
        *looping = false;
        *start = *end = 0;
        return AAX_SUCCESS;
    }
    AAX_Result GetCurrentNativeSampleLocation(int64_t* out) const override { *out = sampleLocation; return AAX_SUCCESS; }

    double tempo = 120.0;
    int32_t numerator = 4;
    int32_t denominator = 4;
    bool playing = false;
    int64_t ticks = 0;
    int64_t sampleLocation = 0;
};

class CFakeMidiNode : public AAX_IMIDINode {
public:
    AAX_CMidiStream* GetNodeBuffer() override
    {
        stream.mBufferSize = static_cast<uint32_t>(incoming.size());
        stream.mBuffer = incoming.empty() ? nullptr : incoming.data();
        return &stream;
    }
    AAX_Result PostMIDIPacket(AAX_CMidiPacket* packet) override
    {
        posted.push_back(*packet);
        return AAX_SUCCESS;
    }
    AAX_ITransport* GetTransport() override { return transport; }

    std::vector<AAX_CMidiPacket> incoming;
    std::vector<AAX_CMidiPacket> posted;
    AAX_CMidiStream stream;
    AAX_ITransport* transport = nullptr;
};

AAX_CMidiPacket Packet(uint32_t timestamp, std::vector<unsigned char> bytes, bool immediate = false);

class CFakeViewContainer : public AAX_IViewContainer {
public:
    int32_t GetType() override { return AAX_eViewContainer_Type_NSView; }
    void* GetPtr() override { return this; }
    AAX_Result GetModifiers(uint32_t* out) override { *out = 0; return AAX_SUCCESS; }
    AAX_Result SetViewSize(AAX_Point& size) override
    {
        sizes.push_back(size);
        return AAX_SUCCESS;
    }
    std::vector<AAX_Point> sizes;
};

// One instance's context record with the host's buffers behind it.
class CTestContext {
public:
    static constexpr int kInputs = 32;
    static constexpr int kOutputs = 34;

    explicit CTestContext(int32_t frames = 64, float sampleRate = 48000.0f);
    void SetFrames(int32_t frames);
    void FillOutputs(float value);
    const std::vector<float>& Output(int channel) const { return mOutputBuffers[channel]; }
    bool OutputIsSilent(int channel) const;

    S_Alg_Context context{};
    int32_t bypass = 0;
    float sampleRate;
    int32_t frames;
    CFakeMidiNode midiIn;
    CFakeMidiNode midiOut;
    CFakeMidiNode transportNode;
    CFakeTransport transport;

private:
    std::vector<std::vector<float>> mInputBuffers;
    std::vector<std::vector<float>> mOutputBuffers;
    std::vector<float*> mInputs;
    std::vector<float*> mOutputs;
};

// A temporary file the probe plug-in records into (VST2PROBE_LOG).
class CProbeRecord {
public:
    CProbeRecord();
    ~CProbeRecord();
    std::vector<std::string> Lines() const;
    // Lines starting with `prefix`, in order.
    std::vector<std::string> LinesStartingWith(const std::string& prefix) const;
    void Clear() const;
    const std::string& Path() const { return mPath; }

private:
    std::string mPath;
};

// A fake host on a plug-in file, created and initialised, quit on destruction.
struct HostedPlugin {
    explicit HostedPlugin(const std::string& pluginPath, bool init = true);
    ~HostedPlugin();
    CTestOwner owner;
    std::string path;
    std::unique_ptr<CFakeHostVST2> host;
};

// Records the log lines of the given categories (at debug) while it lives.
class CLogCapture : public ILogRecordListener {
public:
    explicit CLogCapture(const std::vector<std::string>& categories);
    ~CLogCapture() override;
    void onLogRecorded(const std::string& line) override { lines.push_back(line); }
    bool Contains(const std::string& text) const;
    size_t Count(const std::string& text) const;
    std::vector<std::string> lines;

private:
    std::string mConfPath;
};

}  // namespace Vst2Test
