// The wrapped instrument and the same instrument driven directly through the
// VST 3 interfaces, with the same notes, must produce the same samples.
#include <algorithm>
#include <cmath>

#include "DirectSynth.h"
#include "Vst3TestSupport.h"

using namespace vst3test;

TEST(Vst3Render, WrappedAndDirectFirstBufferAreIdentical)
{
    constexpr int32_t kSamples = 256;
    const std::vector<SDirectNote> notes = {{10, true, 60, 100}, {50, true, 67, 80}, {200, false, 60, 0}};
    std::vector<float> wrapped;
    {
        CHostedPlugin plugin("MrvTestSynth");
        CTestContext buffers(kSamples);
        for (const SDirectNote& n : notes)
            buffers.mMidiIn.Add(static_cast<uint32_t>(n.sample), n.on ? 0x90 : 0x80, static_cast<uint8_t>(n.pitch),
                                static_cast<uint8_t>(n.velocity));
        plugin.mHost->Process(buffers.Context());
        wrapped = buffers.Output(0);
        wrapped.insert(wrapped.end(), buffers.Output(1).begin(), buffers.Output(1).end());
        // Stems are left alone.
        for (int c = 2; c < 34; ++c)
            for (float s : buffers.Output(c))
                ASSERT_EQ(s, 0.0f);
    }
    // Without an AAX controller the wrapper sets the plug-in up at 44100 Hz.
    CDirectSynth direct(BundlePath("MrvTestSynth"), 44100.0);
    ASSERT_TRUE(direct.ok());
    std::vector<float> left, right;
    direct.Render(notes, kSamples, kSamples, left, right);
    left.insert(left.end(), right.begin(), right.end());
    ASSERT_EQ(wrapped.size(), left.size());
    float peak = 0;
    for (size_t i = 0; i < wrapped.size(); ++i) {
        ASSERT_EQ(wrapped[i], left[i]) << "sample " << i;
        peak = std::max(peak, std::fabs(wrapped[i]));
    }
    EXPECT_GT(peak, 0.05f);
    EXPECT_EQ(wrapped[9], 0.0f);  // silent before the first note
}
