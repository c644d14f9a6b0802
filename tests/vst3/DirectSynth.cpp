#include "DirectSynth.h"

#include <dlfcn.h>

#include "public.sdk/source/vst/hosting/hostclasses.h"
#include "vst3/hosting/EventList.h"
#include "vst3/hosting/ParameterChanges.h"

namespace vst3test {

using namespace Steinberg;
using namespace Steinberg::Vst;

CDirectSynth::CDirectSynth(const std::string& bundlePath, double sampleRate)
{
    const std::string name = bundlePath.substr(bundlePath.find_last_of('/') + 1);
    const std::string stem = name.substr(0, name.size() - 5);  // without ".vst3"
    const std::string so = bundlePath + "/Contents/x86_64-linux/" + stem + ".so";
    mModule = dlopen(so.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!mModule)
        return;
    auto entry = reinterpret_cast<bool (*)(void*)>(dlsym(mModule, "ModuleEntry"));
    auto getFactory = reinterpret_cast<IPluginFactory* (*)()>(dlsym(mModule, "GetPluginFactory"));
    if (!entry || !getFactory || !entry(mModule))
        return;
    mFactory = getFactory();
    PClassInfo info;
    if (!mFactory || mFactory->getClassInfo(0, &info) != kResultOk)
        return;
    if (mFactory->createInstance(info.cid, IAudioProcessor::iid, reinterpret_cast<void**>(&mProcessor)) != kResultOk)
        return;
    mProcessor->queryInterface(IComponent::iid, reinterpret_cast<void**>(&mComponent));
    mContext = new HostApplication;  // not reference counted: deleted below
    mComponent->initialize(mContext);
    mComponent->activateBus(kAudio, kOutput, 0, true);
    mComponent->activateBus(kAudio, kOutput, 1, false);
    ProcessSetup setup{kRealtime, kSample32, 256, sampleRate};
    mProcessor->setupProcessing(setup);
    mProcessor->setProcessing(true);
}

CDirectSynth::~CDirectSynth()
{
    if (mProcessor)
        mProcessor->setProcessing(false);
    if (mComponent) {
        mComponent->terminate();
        mComponent->release();
    }
    if (mProcessor)
        mProcessor->release();
    delete static_cast<HostApplication*>(mContext);
    if (mFactory)
        mFactory->release();
    if (mModule) {
        if (auto exitFn = reinterpret_cast<bool (*)()>(dlsym(mModule, "ModuleExit")))
            exitFn();
        dlclose(mModule);
    }
}

void CDirectSynth::Render(const std::vector<SDirectNote>& notes, int64 total, int32 block, std::vector<float>& left,
                          std::vector<float>& right)
{
    left.assign(static_cast<size_t>(total), 0.0f);
    right.assign(static_cast<size_t>(total), 0.0f);
    if (!mProcessor)
        return;
    Morvane::vst3::EventList events(2048);
    Morvane::vst3::ParameterChanges in(6), out(6);
    float* aux[2] = {nullptr, nullptr};
    for (int64 start = 0; start < total; start += block) {
        const int32 n = static_cast<int32>(std::min<int64>(block, total - start));
        events.clear();
        for (const SDirectNote& note : notes) {
            if (note.sample < start || note.sample >= start + n)
                continue;
            Event e{};
            e.sampleOffset = static_cast<int32>(note.sample - start);
            if (note.on) {
                e.type = Event::kNoteOnEvent;
                e.noteOn.pitch = note.pitch;
                e.noteOn.velocity = note.velocity * (1.0f / 127.0f);
                e.noteOn.noteId = -1;
            } else {
                e.type = Event::kNoteOffEvent;
                e.noteOff.pitch = note.pitch;
                e.noteOff.velocity = note.velocity * (1.0f / 127.0f);
                e.noteOff.noteId = -1;
            }
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
        mProcessor->process(data);
    }
}

}  // namespace vst3test
