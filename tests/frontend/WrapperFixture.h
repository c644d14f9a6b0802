// Builds AAXWrapper_Parameters with a scripted fake host in place of the
// real ones, through the wrapper's documented test seam.
#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "AAXWrapper_Parameters.h"
#include "FakeHostDouble.h"
#include "CLogCapture.h"

class WrapperTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        sScript = std::make_shared<FakeHostScript>();
        sNoHost = false;
        AAXWrapper_Parameters::SetFakeHostFactoryForTesting(&MakeHost);
        mLog = std::make_unique<TestSupport::CLogCapture>();
    }
    void TearDown() override
    {
        AAXWrapper_Parameters::SetFakeHostFactoryForTesting(nullptr);
        mLog.reset();
        sScript.reset();
    }

    FakeHostScript& Script() { return *sScript; }
    void WithoutHost() { sNoHost = true; }

    static IFakeHost* MakeHost(AAX_CEffectParameters& owner, std::string&)
    {
        return sNoHost ? nullptr : new FakeHostDouble(owner, sScript);
    }

    std::unique_ptr<TestSupport::CLogCapture> mLog;
    static inline std::shared_ptr<FakeHostScript> sScript;
    static inline bool sNoHost = false;
};

// Owns a wrapper the way a host does: one reference, dropped at the end.
struct WrapperDeleter {
    void operator()(AAXWrapper_Parameters* wrapper) const { wrapper->Release(); }
};
using WrapperPtr = std::unique_ptr<AAXWrapper_Parameters, WrapperDeleter>;

// A host-style chunk record with room for `dataSize` bytes.
struct Chunk {
    explicit Chunk(uint32_t dataSize) : block(sizeof(AAX_SPlugInChunk) + dataSize)
    {
        get()->fSize = static_cast<int32_t>(dataSize);
    }
    AAX_SPlugInChunk* get() { return reinterpret_cast<AAX_SPlugInChunk*>(block.data()); }
    std::vector<char> block;
};

inline WrapperPtr MakeWrapper()
{
    auto* wrapper = static_cast<AAXWrapper_Parameters*>(AAXWrapper_Parameters::Create());
    wrapper->AddRef();
    return WrapperPtr(wrapper);
}
