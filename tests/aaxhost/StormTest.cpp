// A busy host: while one thread processes buffer after buffer, another
// changes parameters, restores state and opens and closes the editor. Run
// under ThreadSanitizer in CI, where any unsynchronised access fails it.
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <thread>

#include "AAX_IDescription.h"
#include "EditorSession.h"
#include "HostInstance.h"
#include "HostString.h"
#include "PluginSession.h"
#include "StateFile.h"
#include "TestSupport.h"

using namespace AAXHost;

namespace {

constexpr int kBlock = 256;

void Storm(const std::string& bundle, const std::string& parameter)
{
    CPluginSession session;
    std::string error;
    ASSERT_TRUE(session.Open(bundle, error)) << error;
    const SEffectInfo* effect = session.FindEffect("", error);
    ASSERT_NE(effect, nullptr) << error;
    const SComponentInfo* component = FindProcessingComponent(*effect);
    ASSERT_NE(component, nullptr);
    auto process = reinterpret_cast<AAX_CProcessProc>(component->processProcs.front().proc);
    STransportState transport;
    SInstanceConfig config;
    config.maxBlock = kBlock;
    CHostInstance instance(*effect, *component, config, transport);
    ASSERT_TRUE(instance.Create(error)) << error;

    // A state to restore, taken before the storm.
    std::vector<SStateChunk> state;
    ASSERT_TRUE(SaveEffectState(*instance.Effect(), state, error)) << error;

    std::atomic<bool> stop{false};
    std::atomic<int> buffers{0};
    std::atomic<bool> finite{true};
    std::thread audio([&] {
        const std::vector<AAX_CMidiPacket> chord = {{0, 3, {0x90, 60, 100, 0}, 0}, {0, 3, {0x90, 64, 100, 0}, 0}};
        void* context = instance.Context();
        for (int64_t start = 0; !stop.load(); start += kBlock) {
            instance.PrepareBlock(start, kBlock, start % (kBlock * 64) == 0 ? chord : std::vector<AAX_CMidiPacket>());
            process(&context, &context + 1);
            for (int s = 0; s < kBlock; ++s)
                if (!std::isfinite(instance.Output(0)[s]))
                    finite = false;
            ++buffers;
        }
    });
    CEditorSession editor;
    for (int round = 0; round < 40; ++round) {
        instance.Effect()->UpdateParameterNormalizedValue(parameter.c_str(), (round % 10) / 10.0,
                                                          AAX_eUpdateSource_Unspecified);
        EXPECT_EQ(instance.SetParameter(parameter, (round % 7) / 7.0), AAX_SUCCESS);
        if (round % 4 == 0) {
            EXPECT_TRUE(LoadEffectState(*instance.Effect(), state, error)) << error;
        }
        if (round % 8 == 0) {
            EXPECT_TRUE(editor.Open(instance, error)) << error;
            EXPECT_TRUE(editor.Idle(error)) << error;
            editor.Close();
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
    while (buffers.load() < 100)
        std::this_thread::yield();
    stop = true;
    audio.join();
    EXPECT_TRUE(finite.load());
    instance.Destroy();
    EXPECT_TRUE(session.Close(error)) << error;
}

}  // namespace

TEST(Storm, DefaultProductStaysConsistentWhileAnotherThreadWorks)
{
    Storm(AAXHOST_DEFAULT_BUNDLE, "1");
}

TEST(Storm, Vst3BackEndStaysConsistentWhileAnotherThreadWorks)
{
    Storm(std::string(AAXHOST_BUNDLE_DIR) + "/standard/MrvTestSynth.aaxplugin", "0");
}
