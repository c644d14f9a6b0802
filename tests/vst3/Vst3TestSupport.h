// Doubles and helpers for driving CFakeHostVST3 in-process: an owner that
// records AAX gestures, MIDI / transport / view-container doubles, the test
// plug-ins' call trace, and a log listener.
#pragma once

#include <cstdlib>
#include <fstream>
#include <memory>
#include <mutex>
#include <sstream>
#include <stdexcept>
#include <unistd.h>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "AAX_CEffectParameters.h"
#include "AAX_IMIDINode.h"
#include "AAX_ITransport.h"
#include "AAX_IViewContainer.h"
#include "S_Alg_Context.h"
#include "logger/CLog.h"
#include "vst3/CFakeHostVST3.h"
#include "vst3/CVST3Loader.h"

namespace vst3test {

inline std::string BundlePath(const std::string& name)
{
    return std::string(VST3_TEST_BUNDLE_DIR) + "/" + name + ".vst3";
}

// Records the AAX gestures the fake host asks of its owner.
class CTestOwner : public AAX_CEffectParameters {
public:
    ~CTestOwner() override = default;
    AAX_Result TouchParameter(AAX_CParamID id) override
    {
        mCalls.push_back(std::string("touch ") + id);
        return AAX_SUCCESS;
    }
    AAX_Result SetParameterNormalizedValue(AAX_CParamID id, double value) override
    {
        std::ostringstream s;
        s << "set " << id << " " << value;
        mCalls.push_back(s.str());
        return AAX_SUCCESS;
    }
    AAX_Result ReleaseParameter(AAX_CParamID id) override
    {
        mCalls.push_back(std::string("release ") + id);
        return AAX_SUCCESS;
    }
    std::vector<std::string> mCalls;
};

class CTestTransport : public AAX_ITransport {
public:
    AAX_Result GetCurrentTempo(double* out) const override { *out = mTempo; return AAX_SUCCESS; }
    AAX_Result GetCurrentMeter(int32_t* num, int32_t* den) const override
    {
        *num = mNumerator;
        *den = mDenominator;
        return AAX_SUCCESS;
    }
    AAX_Result IsTransportPlaying(bool* out) const override { *out = mPlaying; return AAX_SUCCESS; }
    AAX_Result GetCurrentTickPosition(int64_t* out) const override { *out = mTicks; return AAX_SUCCESS; }
    AAX_Result GetCurrentLoopPosition(bool* looping, int64_t* start, int64_t* end) const override
    {
        *looping = false;
        *start = *end = 0;
        return AAX_SUCCESS;
    }
    AAX_Result GetCurrentNativeSampleLocation(int64_t* out) const override { *out = mSamplePosition; return AAX_SUCCESS; }

    double mTempo = 120.0;
    int32_t mNumerator = 4;
    int32_t mDenominator = 4;
    bool mPlaying = false;
    int64_t mTicks = 0;
    int64_t mSamplePosition = 0;
};

class CTestMidiNode : public AAX_IMIDINode {
public:
    AAX_CMidiStream* GetNodeBuffer() override
    {
        mStream.mBufferSize = static_cast<uint32_t>(mPackets.size());
        mStream.mBuffer = mPackets.empty() ? nullptr : mPackets.data();
        return &mStream;
    }
    AAX_Result PostMIDIPacket(AAX_CMidiPacket*) override { return AAX_SUCCESS; }
    AAX_ITransport* GetTransport() override { return mTransport; }

    void Add(uint32_t timestamp, uint8_t status, uint8_t data1, uint8_t data2 = 0, bool immediate = false)
    {
        AAX_CMidiPacket packet;
        packet.mTimestamp = timestamp;
        packet.mLength = 3;
        packet.mData[0] = status;
        packet.mData[1] = data1;
        packet.mData[2] = data2;
        packet.mIsImmediate = immediate ? 1 : 0;
        mPackets.push_back(packet);
    }

    std::vector<AAX_CMidiPacket> mPackets;
    AAX_CMidiStream mStream;
    AAX_ITransport* mTransport = nullptr;
};

class CTestViewContainer : public AAX_IViewContainer {
public:
    int32_t GetType() override { return mType; }
    void* GetPtr() override { return mParent; }
    AAX_Result GetModifiers(uint32_t* out) override { *out = 0; return AAX_SUCCESS; }
    AAX_Result SetViewSize(AAX_Point& size) override
    {
        mSizes.push_back(size);
        return AAX_SUCCESS;
    }
    int32_t mType = AAX_eViewContainer_Type_NSView;
    void* mParent = reinterpret_cast<void*>(0x1234);
    std::vector<AAX_Point> mSizes;
};

// One host buffer: 32 input and 34 output channels, as the AAX host gives.
class CTestBuffers {
public:
    explicit CTestBuffers(int32_t samples) : mLength(samples)
    {
        for (auto& c : mIn)
            c.assign(static_cast<size_t>(samples), 0.0f);
        for (auto& c : mOut)
            c.assign(static_cast<size_t>(samples), 0.0f);
        for (size_t i = 0; i < 32; ++i)
            mInPtr[i] = mIn[i].data();
        for (size_t i = 0; i < 34; ++i)
            mOutPtr[i] = mOut[i].data();
        mContext.mSampleRate = &mSampleRate;
        mContext.mInputs = mInPtr;
        mContext.mOutputs = mOutPtr;
        mContext.mBufferLength = &mLength;
        mContext.mMidiIn = &mMidi;
        mContext.mMidiTransport = &mTransportNode;
        mTransportNode.mTransport = &mTransport;
    }
    S_Alg_Context* Context() { return &mContext; }

    std::vector<float> mIn[32];
    std::vector<float> mOut[34];
    float* mInPtr[32] = {};
    float* mOutPtr[34] = {};
    AAX_CSampleRate mSampleRate = 48000.0f;
    int32_t mLength;
    CTestMidiNode mMidi;
    CTestMidiNode mTransportNode;
    CTestTransport mTransport;
    S_Alg_Context mContext{};
};

// The test plug-ins append one line per call to MRV_VST3_TRACE.
class CTrace {
public:
    explicit CTrace(const std::string& name)
        : mPath(::testing::TempDir() + "vst3_trace_" + name + "_" + std::to_string(getpid()) + ".txt")
    {
        std::remove(mPath.c_str());
        setenv("MRV_VST3_TRACE", mPath.c_str(), 1);
    }
    ~CTrace()
    {
        unsetenv("MRV_VST3_TRACE");
        std::remove(mPath.c_str());
    }
    std::vector<std::string> Lines() const
    {
        std::vector<std::string> lines;
        std::ifstream in(mPath);
        for (std::string line; std::getline(in, line);)
            lines.push_back(line);
        return lines;
    }
    // Lines starting with `prefix`.
    std::vector<std::string> With(const std::string& prefix) const
    {
        std::vector<std::string> found;
        for (const std::string& line : Lines())
            if (line.compare(0, prefix.size(), prefix) == 0)
                found.push_back(line);
        return found;
    }
    // Position of the first line starting with `prefix`, or -1.
    int IndexOf(const std::string& prefix) const
    {
        const auto lines = Lines();
        for (size_t i = 0; i < lines.size(); ++i)
            if (lines[i].compare(0, prefix.size(), prefix) == 0)
                return static_cast<int>(i);
        return -1;
    }
    void Clear() const { std::remove(mPath.c_str()); }

private:
    std::string mPath;
};

// Every category at debug, every recorded line kept.
class CLogLines : public ILogRecordListener {
public:
    CLogLines()
    {
        const std::string conf = ::testing::TempDir() + "vst3_log_" + std::to_string(getpid()) + ".conf";
        {
            std::ofstream out(conf);
            for (const char* category :
                 {"gui", "parameters", "fakehost", "process", "description", "bundle", "midi", "warning", "init"})
                out << category << " debug\n";
        }
        CLog* log = CSingleton<CLog>::getInstance();
        log->reloadConf(conf);
        log->setRecordListener(this);
        std::remove(conf.c_str());
    }
    ~CLogLines() override { CSingleton<CLog>::getInstance()->setRecordListener(nullptr); }
    void onLogRecorded(const std::string& line) override
    {
        std::lock_guard<std::mutex> lock(mMutex);
        mLines.push_back(line);
    }
    bool Contains(const std::string& text) const
    {
        std::lock_guard<std::mutex> lock(mMutex);
        for (const auto& line : mLines)
            if (line.find(text) != std::string::npos)
                return true;
        return false;
    }
    size_t Count(const std::string& text) const
    {
        std::lock_guard<std::mutex> lock(mMutex);
        size_t n = 0;
        for (const auto& line : mLines)
            if (line.find(text) != std::string::npos)
                ++n;
        return n;
    }

private:
    mutable std::mutex mMutex;
    std::vector<std::string> mLines;
};

// A fake host around one of our bundles, initialised and set up as the
// front end does it.
struct CHostedPlugin {
    explicit CHostedPlugin(const std::string& bundleName, bool setup = true) : mPath(BundlePath(bundleName))
    {
        mHost = std::make_unique<CFakeHostVST3>(mOwner, mPath);
        // With the log at debug a failed "mVst3Loader!=0" throws.
        try {
            mHost->Init();
        } catch (const std::logic_error&) {
            mInitAsserted = true;
        }
        if (setup)
            mHost->Setup();
    }
    ~CHostedPlugin()
    {
        if (mHost) {
            mHost->QuitGUI();
            mHost->Quit();
        }
    }
    CVST3Loader& Loader() { return *mHost->GetLoader(); }

    CTestOwner mOwner;
    std::string mPath;
    std::unique_ptr<CFakeHostVST3> mHost;
    bool mInitAsserted = false;
};

}  // namespace vst3test
