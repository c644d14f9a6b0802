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

private:
    bool DoInit() override
    {
        Log("Init");
        if (mScript->failAssertions)
            throw std::logic_error("mVst3Loader!=0");
        return true;
    }
    void DoSetup() override { Log("Setup"); }
    void DoQuit() override { Log("Quit"); }
    std::string DoGetPluginVendor() override { return "Double Vendor"; }
    std::string DoGetPluginVersion() override { return "9.9"; }
    int32_t DoGetPluginProductUniqueID() override { return 4242; }
    int DoGetParameterCount() override
    {
        if (mScript->failAssertions)
            throw std::logic_error("count");
        return static_cast<int>(mScript->values.size());
    }
    SParameterInfo DoGetParameterInfo(int index) override
    {
        SParameterInfo info;
        if (index < 0 || index >= static_cast<int>(mScript->values.size()))
            return info;
        info.valid = true;
        info.tag = static_cast<uint32_t>(index);
        info.name = "Param" + std::to_string(index);
        info.defaultValue = mScript->values[static_cast<size_t>(index)];
        info.defaultIsPresentValue = true;
        return info;
    }
    std::optional<double> DoGetParameterValue(int index) override
    {
        if (index < 0 || index >= static_cast<int>(mScript->values.size()))
            return std::nullopt;
        return mScript->values[static_cast<size_t>(index)];
    }
    void DoProcess(const CProcessBlock&) override
    {
        if (mScript->logProcess)
            MV_LOG("process", kLogDebug, "double ", mName, " processed ", mScript->processedBy.size());
        mScript->processedBy.push_back(mName);
        if (mScript->processedBy.size() == mScript->throwAtCall)
            throw Morvane::CException("plug-in failed in " + mName);
    }
    void DoAddInputChangeForProcessing(int i, double v) override { Log("Processing " + Change(i, v)); }
    void DoAddInputChangeForGUI(int i, double v) override { Log("GUI " + Change(i, v)); }
    void DoQuitGUI() override {}
    void DoCreateGUI(AAX_IViewContainer*) override {}
    SViewSize DoGetViewSize() override { return SViewSize{true, 100.0f, 100.0f}; }
    SPluginState DoGetState() override
    {
        Log("GetState");
        return SPluginState{true, mScript->state};
    }
    bool DoSetState(const void* data, uint32_t size) override
    {
        Log("SetState " + std::to_string(size));
        const char* bytes = static_cast<const char*>(data);
        mScript->state.assign(bytes, bytes + size);
        return true;
    }

    void Log(const std::string& entry) { mScript->journal.push_back(entry); }
    static std::string Change(int index, double value) { return std::to_string(index) + " " + std::to_string(value); }

    std::shared_ptr<FakeHostScript> mScript;
    std::string mName;
};
