// A "vst3" AAX bundle around our test instrument, loaded by aaxhost exactly
// as a host loads it, against the instrument driven directly.
#include <dlfcn.h>

#include <algorithm>

#include <gtest/gtest.h>

#include "TestSupport.h"
#include "pluginterfaces/base/ipluginbase.h"
#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"
#include "pluginterfaces/vst/ivstevents.h"
#include "public.sdk/source/vst/hosting/hostclasses.h"
#include "vst3/hosting/EventList.h"
#include "vst3/hosting/ParameterChanges.h"

using namespace AAXHostTest;
using namespace Steinberg;
using namespace Steinberg::Vst;

namespace {

const std::string kBundle = std::string(VST3_E2E_BUNDLE_DIR) + "/MrvTestSynth.aaxplugin";
constexpr int kBlock = 256;

struct SDirectNote {
    int64 sample;  // absolute position
    bool on;
    int16 pitch;
    int velocity;  // MIDI 0..127
};

// The reference: the instrument through the bare VST 3 interfaces, each note
// placed in the block that holds it. Main bus only, aux bus off.
bool RenderDirect(const std::vector<SDirectNote>& notes, int64 total, std::vector<float>& left, std::vector<float>& right)
{
    void* module = dlopen(VST3_TEST_BUNDLE_DIR "/MrvTestSynth.vst3/Contents/x86_64-linux/MrvTestSynth.so",
                          RTLD_NOW | RTLD_LOCAL);
    if (!module)
        return false;
    auto entry = reinterpret_cast<bool (*)(void*)>(dlsym(module, "ModuleEntry"));
    auto getFactory = reinterpret_cast<IPluginFactory* (*)()>(dlsym(module, "GetPluginFactory"));
    IPluginFactory* factory = entry && getFactory && entry(module) ? getFactory() : nullptr;
    PClassInfo info;
    IAudioProcessor* processor = nullptr;
    if (!factory || factory->getClassInfo(0, &info) != kResultOk ||
        factory->createInstance(info.cid, IAudioProcessor::iid, reinterpret_cast<void**>(&processor)) != kResultOk)
        return false;
    IComponent* component = nullptr;
    processor->queryInterface(IComponent::iid, reinterpret_cast<void**>(&component));
    auto* context = new HostApplication;  // not reference counted: deleted below
    component->initialize(context);
    component->activateBus(kAudio, kOutput, 0, true);
    component->activateBus(kAudio, kOutput, 1, false);
    ProcessSetup setup{kRealtime, kSample32, kBlock, 44100.0};
    processor->setupProcessing(setup);
    processor->setProcessing(true);

    left.assign(static_cast<size_t>(total), 0.0f);
    right.assign(static_cast<size_t>(total), 0.0f);
    Morvane::vst3::EventList events(2048);
    Morvane::vst3::ParameterChanges in(6), out(6);
    float* aux[2] = {nullptr, nullptr};
    for (int64 start = 0; start < total; start += kBlock) {
        const int32 n = static_cast<int32>(std::min<int64>(kBlock, total - start));
        events.clear();
        for (const SDirectNote& note : notes) {
            if (note.sample < start || note.sample >= start + n)
                continue;
            Event e{};
            e.sampleOffset = static_cast<int32>(note.sample - start);
            e.type = note.on ? Event::kNoteOnEvent : Event::kNoteOffEvent;
            if (note.on)
                e.noteOn = {0, note.pitch, 0.0f, note.velocity * (1.0f / 127.0f), 0, -1};
            else
                e.noteOff = {0, note.pitch, note.velocity * (1.0f / 127.0f), -1, 0.0f};
            events.addEvent(e);
        }
        float* main[2] = {left.data() + start, right.data() + start};
        AudioBusBuffers outputs[2];
        outputs[0].numChannels = 2;
        outputs[0].channelBuffers32 = main;
        outputs[1].numChannels = 2;
        outputs[1].channelBuffers32 = aux;
        ProcessData data;
        data.processMode = kRealtime;
        data.symbolicSampleSize = kSample32;
        data.numSamples = n;
        data.numOutputs = 2;
        data.outputs = outputs;
        data.inputEvents = &events;
        data.inputParameterChanges = &in;
        data.outputParameterChanges = &out;
        out.clearQueue();
        processor->process(data);
    }
    processor->setProcessing(false);
    component->terminate();
    component->release();
    processor->release();
    delete context;
    factory->release();
    if (auto exitFn = reinterpret_cast<bool (*)()>(dlsym(module, "ModuleExit")))
        exitFn();
    dlclose(module);
    return true;
}

}  // namespace

TEST(Vst3EndToEnd, RenderMatchesTheInstrumentDrivenDirectly)
{
    const std::string dir = TempDir("vst3_e2e_render");
    const std::string midi = dir + "/notes.mid";
    // At 120 BPM a quarter note is 22050 samples; 0.3 beats lands inside a block.
    WriteMidiFile(midi, {{0.0, 1.0, 60, 100}, {0.3, 0.9, 67, 90}, {1.2, 0.5, 72, 127}});
    const std::string out = dir + "/out.wav";
    const SRunResult run = RunHost({"render", kBundle, "--midi", midi, "--out", out, "--rate", "44100", "--block",
                                    std::to_string(kBlock), "--seconds", "1", "--no-progress"});
    ASSERT_EQ(run.exitCode, 0) << run.err;
    int rate = 0;
    const auto channels = ReadWavChannels(out, &rate);
    ASSERT_EQ(channels.size(), 2u);
    EXPECT_EQ(rate, 44100);

    const std::vector<SDirectNote> notes = {{0, true, 60, 100},     {6615, true, 67, 90},  {22050, false, 60, 0},
                                      {26460, true, 72, 127}, {26460, false, 67, 0}, {37485, false, 72, 0}};
    std::vector<float> left, right;
    ASSERT_TRUE(RenderDirect(notes, static_cast<int64>(channels[0].size()), left, right));
    EXPECT_EQ(MaxDifference(channels[0], left), 0.0);
    EXPECT_EQ(MaxDifference(channels[1], right), 0.0);
    EXPECT_GT(Peak(channels[0]), 0.05);
}
