// Debian's VST 2 plug-ins through the fake host: they load, describe
// themselves, and make sound from MIDI delivered one packet per call.
#include <gtest/gtest.h>

#include <cmath>
#include <memory>

#include "Vst2TestSupport.h"

using namespace Vst2Test;

namespace {

float PeakOfMain(CFakeHostVST2& host, const std::vector<AAX_CMidiPacket>& packets, int blocks)
{
    CTestContext ctx(512, 48000.0f);
    float peak = 0.0f;
    for (int b = 0; b < blocks; ++b) {
        ctx.mMidiIn.mPackets = b == 0 ? packets : std::vector<AAX_CMidiPacket>{};
        ctx.SetFrames(512);
        host.Process(ctx.Context());
        for (int c = 0; c < 2; ++c)
            for (float s : ctx.Output(c)) {
                EXPECT_TRUE(std::isfinite(s));
                peak = std::max(peak, std::fabs(s));
            }
    }
    return peak;
}

}  // namespace

TEST(RealVST2Plugins, AmsynthPlaysANote)
{
    const std::string path = std::string(kDebianVstDir) + "amsynth_vst.so";
    if (!FileExists(path))
        GTEST_SKIP() << path << " not installed";
    HostedPlugin hosted(path);
    CFakeHostVST2& host = *hosted.host;
    ASSERT_NE(host.GetEffect(), nullptr);
    EXPECT_GT(host.GetParameterCount(), 10);
    std::string name;
    float value = -1.0f;
    EXPECT_TRUE(host.GetParameterInfo(0, name, value));
    EXPECT_FALSE(name.empty());

    EXPECT_EQ(PeakOfMain(host, {}, 4), 0.0f);
    EXPECT_GT(PeakOfMain(host, {MidiPacket(0, {0x90, 60, 110})}, 20), 0.001f);

    unsigned int size = 0;
    host.GetState(&size, nullptr);
    EXPECT_GT(size, CFakeHostVST2::kStateMargin);
    std::vector<unsigned char> state(size);
    host.GetState(&size, state.data());
    HostedPlugin fresh(path);
    fresh.host->SetState(size, state.data());
}

// These plug-ins read audioMasterGetSampleRate on resume; the host answers it
// with an address (as the original host did), which makes them fail while
// resizing their buffers. The failure must stay inside the fake host.
TEST(RealVST2Plugins, DistrhoPluginsLoadThroughMainAndTheirFailuresStayContained)
{
    for (const char* file : {"Kars-vst.so", "Nekobi-vst.so"}) {
        const std::string path = std::string(kDebianVstDir) + file;
        if (!FileExists(path))
            continue;
        CLogCapture log({"fakehost"});
        std::unique_ptr<HostedPlugin> hosted;
        ASSERT_NO_THROW(hosted = std::make_unique<HostedPlugin>(path)) << file;
        ASSERT_NE(hosted->host->GetEffect(), nullptr) << file;
        EXPECT_GT(hosted->host->GetParameterCount(), 0) << file;
        EXPECT_FALSE(hosted->host->GetPluginVendor().empty()) << file;
        CTestContext ctx(256);
        ctx.mMidiIn.mPackets = {MidiPacket(0, {0x90, 60, 100})};
        EXPECT_NO_THROW(hosted->host->Process(ctx.Context())) << file;
        EXPECT_NO_THROW(hosted.reset()) << file;
    }
}
