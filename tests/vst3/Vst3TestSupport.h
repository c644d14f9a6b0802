// Helpers for driving CFakeHostVST3 in-process: where our test bundles are,
// their call trace and a fake host held for one test. The AAX doubles,
// context record, owner and log capture are shared test support.
#pragma once

#include <memory>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

#include "AaxHostDoubles.h"
#include "CLogCapture.h"
#include "CPluginRecordFile.h"
#include "CScopedEnv.h"
#include "CTempDir.h"
#include "CTestContext.h"
#include "CTestOwner.h"
#include "vst3/CFakeHostVST3.h"
#include "public.sdk/source/vst/hosting/hostclasses.h"
#include "vst3/CVST3Loader.h"

namespace vst3test {

// The shared doubles, context record, owner and log capture.
using namespace TestSupport;

inline std::string BundlePath(const std::string& name)
{
    return std::string(VST3_TEST_BUNDLE_DIR) + "/" + name + ".vst3";
}

// The test plug-ins append one line per call to MRV_VST3_TRACE.
class CTrace : public TestSupport::CPluginRecordFile {
public:
    CTrace() : CPluginRecordFile("MRV_VST3_TRACE") {}
};

// A fake host around one of our bundles, initialised and set up as the
// front end does it.
struct CHostedPlugin {
    explicit CHostedPlugin(const std::string& bundleName, bool setup = true) : mPath(BundlePath(bundleName))
    {
        mHost = std::make_unique<CFakeHostVST3>(mOwner, mPath);
        // With the log at debug a failed "mVst3Loader!=0" throws; the tests
        // check the loader themselves.
        try {
            mHost->Init();
        } catch (const std::logic_error&) {
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
};

// Sends a test hook message with integer attributes to the plug-in's controller.
inline void NotifyController(CVST3Loader& loader, const char* id,
                             std::initializer_list<std::pair<const char*, Steinberg::int64>> attributes)
{
    using namespace Steinberg;
    Vst::IConnectionPoint* point = nullptr;
    ASSERT_EQ(loader.getController()->queryInterface(Vst::IConnectionPoint::iid, reinterpret_cast<void**>(&point)),
              kResultOk);
    auto* message = new Vst::HostMessage;
    message->setMessageID(id);
    for (const auto& [name, value] : attributes)
        message->getAttributes()->setInt(name, value);
    point->notify(message);
    message->release();
    point->release();
}

}  // namespace vst3test
