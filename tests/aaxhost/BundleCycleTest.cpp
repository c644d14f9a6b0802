// Hosts load and unload a bundle many times in one process: each cycle must
// give back everything it took. What a cycle leaks is left unreachable once
// the library is unmapped, so LeakSanitizer (the ASan run) finds it.
#include <dlfcn.h>

#include <cstdlib>
#include <vector>

#include <gtest/gtest.h>

#include "BundleLoader.h"
#include "HostDescriptors.h"
#include "HostServices.h"
#include "TestSupport.h"

using namespace AAXHost;

namespace {

// dlopen, start-up, registration (which sets the log up), shut-down, dlclose.
void LoadRegisterUnload(const std::string& library)
{
    void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    auto startup = reinterpret_cast<ACFStartupProc>(dlsym(handle, "ACFStartup"));
    auto registerPlugin = reinterpret_cast<ACFRegisterPluginProc>(dlsym(handle, "ACFRegisterPlugin"));
    auto shutdown = reinterpret_cast<ACFShutdownProc>(dlsym(handle, "ACFShutdown"));
    ASSERT_TRUE(startup && registerPlugin && shutdown);
    auto* services = new CHostServices;
    EXPECT_EQ(startup(static_cast<AAX_IACFHostServices*>(services)), ACF_OK);
    auto* collection = new CHostCollection;
    IACFPluginDefinition* definition = nullptr;
    EXPECT_EQ(registerPlugin(static_cast<AAX_IACFCollection*>(collection), &definition), ACF_OK);
    if (definition)
        definition->Release();
    collection->Release();
    EXPECT_EQ(shutdown(static_cast<AAX_IACFHostServices*>(services)), ACF_OK);
    services->Release();
    EXPECT_EQ(dlclose(handle), 0);
}

}  // namespace

TEST(BundleCycles, LoadingAndUnloadingTheBundleLeaksNothing)
{
    std::string library, error;
    ASSERT_TRUE(FindBundleLibrary(AAXHOST_DEFAULT_BUNDLE, library, error)) << error;
    for (int i = 0; i < 50; ++i)
        LoadRegisterUnload(library);
}

// The C library's random generator is the host's: loading the bundle (whose
// VST 3 SDK reseeds it from a static initialiser) must not change what the
// host, or a plug-in in the same process, draws next. A fixed reseed on every
// load made Debian's ZynAddSubFX take the same port each time and leak a
// socket per load.
TEST(BundleCycles, LoadingTheBundleLeavesTheHostsRandomSequenceAlone)
{
    std::string library, error;
    ASSERT_TRUE(FindBundleLibrary(AAXHOST_DEFAULT_BUNDLE, library, error)) << error;
    std::vector<long> expected;
    srandom(1234);
    for (int i = 0; i < 4; ++i)
        expected.push_back(random());

    srandom(1234);
    EXPECT_EQ(random(), expected[0]);
    void* handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    auto version = reinterpret_cast<ACFGetSDKVersionProc>(dlsym(handle, "ACFGetSDKVersion"));
    ASSERT_NE(version, nullptr);
    uint64_t sdk = 0;
    version(&sdk);
    EXPECT_EQ(random(), expected[1]) << "the first entry point gives the host its generator back";
    EXPECT_EQ(dlclose(handle), 0);
    EXPECT_EQ(random(), expected[2]);

    // Loaded and unloaded without a call: given back on the way out.
    handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(handle, nullptr) << dlerror();
    EXPECT_EQ(dlclose(handle), 0);
    EXPECT_EQ(random(), expected[3]);
}
