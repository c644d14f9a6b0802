// A scripted IFakeHost: records every call in a journal shared with the test
// (it outlives the double, so destruction is visible too).
#pragma once

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include "CException.h"
#include "fakehost/IFakeHost.h"
#include "logger/CLog.h"

struct FakeHostScript {
    std::vector<std::string> journal;
    std::vector<float> values;        // one per parameter; GetParameterCount() is its size
    bool failAssertions = false;      // Init and GetParameterCount throw, as a debug-configured assert does
    size_t throwAtCall = 0;           // Process call number (1-based) that throws; 0: never
    std::vector<char> state{'s', 't', 'a', 't', 'e'};
    std::vector<std::string> processedBy;  // names of doubles whose Process ran
    bool logProcess = false;               // Process logs a numbered line, as a plug-in's path may
};

class FakeHostDouble : public IFakeHost {
public:
    FakeHostDouble(AAX_CEffectParameters& owner, std::shared_ptr<FakeHostScript> script, std::string name = "host")
        : IFakeHost(owner), mScript(std::move(script)), mName(std::move(name)) {}
    ~FakeHostDouble() override { Log("~FakeHostDouble"); }

    bool Init() override
    {
        Log("Init");
        if (mScript->failAssertions)
            throw std::logic_error("mVst3Loader!=0");
        return true;
    }
    void Setup() override { Log("Setup"); }
    void Quit() override { Log("Quit"); }
    std::string GetPluginVendor() override { return "Double Vendor"; }
    std::string GetPluginVersion() override { return "9.9"; }
    int32_t GetPluginProductUniqueID() override { return 4242; }
    int GetParameterCount() override
    {
        if (mScript->failAssertions)
            throw std::logic_error("count");
        return static_cast<int>(mScript->values.size());
    }
    bool GetParameterInfo(int index, std::string& outName, float& outDefault) override
    {
        if (index < 0 || index >= static_cast<int>(mScript->values.size()))
            return false;
        outName = "Param" + std::to_string(index);
        outDefault = mScript->values[static_cast<size_t>(index)];
        return true;
    }
    void Process(S_Alg_Context*) override
    {
        if (mScript->logProcess)
            MV_LOG("process", kLogDebug, "double ", mName, " processed ", mScript->processedBy.size());
        mScript->processedBy.push_back(mName);
        if (mScript->processedBy.size() == mScript->throwAtCall)
            throw Morvane::CException("plug-in failed in " + mName);
    }
    void AddInputChangeForProcessing(int i, double v) override { Log("Processing " + Change(i, v)); }
    void AddInputChangeForGUI(int i, double v) override { Log("GUI " + Change(i, v)); }
    void QuitGUI() override {}
    void CreateGUI(AAX_IViewContainer*) override {}
    void GetViewSize(float& outWidth, float& outHeight) override { outWidth = outHeight = 100.0f; }
    int32_t TimerWakeup() override { return 0; }
    bool GetState(unsigned int* outSize, void* outpData) override
    {
        Log(outpData == nullptr ? "GetState size" : "GetState data");
        const auto needed = static_cast<unsigned int>(mScript->state.size());
        if (outpData != nullptr && needed > *outSize) {
            *outSize = needed;
            return false;
        }
        *outSize = needed;
        if (outpData != nullptr)
            std::copy(mScript->state.begin(), mScript->state.end(), static_cast<char*>(outpData));
        return true;
    }
    bool SetState(unsigned int inSize, void* inpData) override
    {
        Log("SetState " + std::to_string(inSize));
        const char* bytes = static_cast<const char*>(inpData);
        mScript->state.assign(bytes, bytes + inSize);
        return true;
    }

private:
    void Log(const std::string& entry) { mScript->journal.push_back(entry); }
    static std::string Change(int index, double value) { return std::to_string(index) + " " + std::to_string(value); }

    std::shared_ptr<FakeHostScript> mScript;
    std::string mName;
};
