#include "BenchRig.h"

#include <unistd.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <map>

#include "HostString.h"
#include "ResultText.h"

namespace BenchProcess {

namespace {

std::map<std::string, std::unique_ptr<AAXHost::CPluginSession>>& Sessions()
{
    static std::map<std::string, std::unique_ptr<AAXHost::CPluginSession>> sessions;
    return sessions;
}

int OutputChannelCount(const AAXHost::SComponentInfo& component)
{
    int n = 2;
    for (const auto& stem : component.stems)
        n += AAX_STEM_FORMAT_CHANNEL_COUNT(stem.format);
    return std::max(n, 34);
}

AAX_CMidiPacket Packet(uint32_t offset, unsigned char status, unsigned char data1, unsigned char data2)
{
    AAX_CMidiPacket p;
    p.mTimestamp = offset;
    p.mLength = 3;
    p.mData[0] = status;
    p.mData[1] = data1;
    p.mData[2] = data2;
    return p;
}

// A spread chord around middle C.
unsigned char ChordNote(int voice) { return static_cast<unsigned char>(48 + 4 * voice); }

}  // namespace

AAXHost::CPluginSession* OpenSession(const std::string& bundlePath, std::string& error)
{
    auto& sessions = Sessions();
    auto found = sessions.find(bundlePath);
    if (found != sessions.end())
        return found->second.get();
    auto session = std::make_unique<AAXHost::CPluginSession>();
    CQuietStdout quiet;
    if (!session->Open(bundlePath, error))
        return nullptr;
    return sessions.emplace(bundlePath, std::move(session)).first->second.get();
}

bool CloseSessions(std::string& error)
{
    bool ok = true;
    CQuietStdout quiet;
    for (auto& entry : Sessions()) {
        std::string message;
        if (!entry.second->Close(message)) {
            error += entry.first + ": " + message + "\n";
            ok = false;
        }
    }
    Sessions().clear();
    return ok;
}

CQuietStdout::CQuietStdout()
{
    std::fflush(stdout);
    mSaved = dup(STDOUT_FILENO);
    if (mSaved >= 0)
        dup2(STDERR_FILENO, STDOUT_FILENO);
}

CQuietStdout::~CQuietStdout()
{
    std::fflush(stdout);
    if (mSaved >= 0) {
        dup2(mSaved, STDOUT_FILENO);
        close(mSaved);
    }
}

CBenchRig::~CBenchRig()
{
    CQuietStdout quiet;
    for (auto& instance : mInstances)
        instance->Destroy();
}

bool CBenchRig::Open(const std::string& bundlePath, int blockSize, int instances, std::string& error)
{
    mSession = OpenSession(bundlePath, error);
    if (!mSession)
        return false;
    const AAXHost::SEffectInfo* effect = mSession->FindEffect("", error);
    if (!effect)
        return false;
    const AAXHost::SComponentInfo* component = AAXHost::FindProcessingComponent(*effect);
    if (!component) {
        error = "the effect registered no native process procedure";
        return false;
    }
    mProcess = reinterpret_cast<AAX_CProcessProc>(component->processProcs.front().proc);
    mBlockSize = blockSize;
    mTransport.sampleRate = kSampleRate;
    mTransport.playing = true;

    AAXHost::SInstanceConfig config;
    config.sampleRate = kSampleRate;
    config.maxBlock = blockSize;
    config.outputChannels = OutputChannelCount(*component);

    AAX_CFieldIndex highest = 8, privateData = -1;
    for (const auto& call : component->calls) {
        highest = std::max(highest, call.fieldIndex);
        if (call.call == "AddPrivateData")
            privateData = call.fieldIndex;
    }

    CQuietStdout quiet;
    for (int i = 0; i < instances; ++i) {
        mInstances.push_back(std::make_unique<AAXHost::CHostInstance>(*effect, *component, config, mTransport));
        if (!mInstances.back()->Create(error)) {
            error = "instance " + std::to_string(i) + ": " + error;
            return false;
        }
        // aaxhost's list of automation events is its render report, not
        // what a host does per point; a long run would only grow it.
        mInstances.back()->Controller()->SetRecordAutomation(false);
        void** slots = static_cast<void**>(mInstances.back()->Context());
        mContexts.push_back(slots);
        mSilenceSlots.emplace_back(slots, slots + highest + 1);
        if (privateData >= 0)
            mSilenceSlots.back()[static_cast<size_t>(privateData)] = &mNullWrapper;
    }
    for (auto& slots : mSilenceSlots)
        mSilenceContexts.push_back(slots.data());
    return true;
}

void CBenchRig::Prepare(const std::vector<AAX_CMidiPacket>& midi)
{
    mTransport.samplePosition = mNextBlockStart;
    for (auto& instance : mInstances)
        instance->PrepareBlock(mNextBlockStart, mBlockSize, midi);
    mNextBlockStart += mBlockSize;
}

bool CBenchRig::SetParameter(const std::string& id, double value, std::string& error)
{
    for (auto& instance : mInstances) {
        const AAX_Result r = instance->SetParameter(id, value);
        if (r != AAX_SUCCESS) {
            error = "setting parameter " + id + " failed with " + AAXHost::ResultText(r);
            return false;
        }
    }
    return true;
}

bool CBenchRig::SetBypass(bool on, std::string& error)
{
    AAXHost::CHostString bypassID;
    if (mInstances.empty() || mInstances.front()->Effect()->GetMasterBypassParameter(&bypassID) != AAX_SUCCESS ||
        bypassID.Text().empty()) {
        error = "the effect names no master bypass parameter";
        return false;
    }
    return SetParameter(bypassID.Text(), on ? 1.0 : 0.0, error);
}

float CBenchRig::MainPeak() const
{
    float peak = 0.0f;
    if (mInstances.empty())
        return peak;
    for (int ch = 0; ch < 2; ++ch) {
        const float* out = mInstances.front()->Output(ch);
        for (int s = 0; s < mBlockSize; ++s)
            peak = std::max(peak, std::fabs(out[s]));
    }
    return peak;
}

void CBenchRig::FillInputs(int channels, float value)
{
    for (auto& instance : mInstances)
        for (int ch = 0; ch < std::min(channels, instance->InputChannels()); ++ch)
            std::fill(instance->Input(ch), instance->Input(ch) + mBlockSize, value);
}

void CBenchRig::FillOutputs(int channels, float value)
{
    // The host owns these buffers; only the plug-in sees them as const.
    for (auto& instance : mInstances)
        for (int ch = 0; ch < std::min(channels, instance->OutputChannels()); ++ch) {
            float* out = const_cast<float*>(instance->Output(ch));
            std::fill(out, out + mBlockSize, value);
        }
}

bool CBenchRig::OutputsEqual(int channels, float value) const
{
    for (const auto& instance : mInstances)
        for (int ch = 0; ch < std::min(channels, instance->OutputChannels()); ++ch) {
            const float* out = instance->Output(ch);
            if (std::any_of(out, out + mBlockSize, [value](float v) { return v != value; }))
                return false;
        }
    return true;
}

std::vector<AAX_CMidiPacket> ChordOn(int voices)
{
    std::vector<AAX_CMidiPacket> packets;
    for (int v = 0; v < voices; ++v)
        packets.push_back(Packet(0, 0x90, ChordNote(v), 100));
    return packets;
}

std::vector<AAX_CMidiPacket> Restrikes(int count, int voices, int blockSize)
{
    std::vector<AAX_CMidiPacket> packets;
    const int pairs = count / 2;
    const int step = std::max(1, blockSize / std::max(1, pairs));
    for (int i = 0; i < pairs; ++i) {
        const unsigned char note = ChordNote(i % std::max(1, voices));
        const auto off = static_cast<uint32_t>(std::min(blockSize - 1, i * step));
        const auto on = static_cast<uint32_t>(std::min(blockSize - 1, i * step + step / 2));
        packets.push_back(Packet(off, 0x80, note, 0));
        packets.push_back(Packet(on, 0x90, note, 100));
    }
    return packets;
}

}  // namespace BenchProcess
