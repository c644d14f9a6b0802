#include "vst3/hosting/HostProcessData.h"

namespace Morvane {
namespace vst3 {

using namespace Steinberg;

namespace {
// Channel count of every audio bus in one direction.
std::vector<int32> busLayout(Vst::IComponent& component, Vst::BusDirection dir)
{
    std::vector<int32> layout;
    const int32 count = component.getBusCount(Vst::kAudio, dir);
    for (int32 i = 0; i < count; ++i) {
        Vst::BusInfo info{};
        layout.push_back(component.getBusInfo(Vst::kAudio, dir, i, info) == kResultOk && info.channelCount > 0
                             ? info.channelCount
                             : 0);
    }
    return layout;
}

std::vector<int32> currentLayout(const std::vector<Vst::AudioBusBuffers>& buses)
{
    std::vector<int32> layout;
    for (const auto& bus : buses)
        layout.push_back(bus.numChannels);
    return layout;
}
}  // namespace

bool HostProcessData::prepare(Vst::IComponent& component, int32 bufferSamples, int32 sampleSize)
{
    // A restart that changes nothing keeps the arrays the audio thread may be
    // reading right now.
    if (sampleSize == symbolicSampleSize && bufferSamples == mPreparedSamples && (numInputs > 0 || numOutputs > 0) &&
        busLayout(component, Vst::kInput) == currentLayout(mInputBuses) &&
        busLayout(component, Vst::kOutput) == currentLayout(mOutputBuses))
        return true;
    unprepare();
    mPreparedSamples = bufferSamples;
    // Only 32-bit samples are ever fed by the wrapper.
    if (sampleSize != Vst::kSample32)
        return false;
    symbolicSampleSize = sampleSize;
    createBuses(component, Vst::kInput, bufferSamples, mInputBuses, mInputChannels);
    createBuses(component, Vst::kOutput, bufferSamples, mOutputBuses, mOutputChannels);
    numInputs = static_cast<int32>(mInputBuses.size());
    numOutputs = static_cast<int32>(mOutputBuses.size());
    inputs = mInputBuses.empty() ? nullptr : mInputBuses.data();
    outputs = mOutputBuses.empty() ? nullptr : mOutputBuses.data();
    return true;
}

void HostProcessData::createBuses(Vst::IComponent& component, Vst::BusDirection dir, int32 bufferSamples,
                                  std::vector<Vst::AudioBusBuffers>& buses, std::vector<std::vector<float*>>& channels)
{
    const int32 count = component.getBusCount(Vst::kAudio, dir);
    if (count <= 0)
        return;
    buses.resize(static_cast<size_t>(count));
    channels.resize(static_cast<size_t>(count));
    for (int32 i = 0; i < count; ++i) {
        Vst::BusInfo info{};
        int32 numChannels = 0;
        if (component.getBusInfo(Vst::kAudio, dir, i, info) == kResultOk && info.channelCount > 0)
            numChannels = info.channelCount;
        auto& pointers = channels[static_cast<size_t>(i)];
        pointers.assign(static_cast<size_t>(numChannels), nullptr);
        if (bufferSamples > 0) {
            for (auto& p : pointers) {
                mStorage.emplace_back(static_cast<size_t>(bufferSamples), 0.0f);
                p = mStorage.back().data();
            }
        }
        Vst::AudioBusBuffers& bus = buses[static_cast<size_t>(i)];
        bus.numChannels = numChannels;
        bus.silenceFlags = 0;
        bus.channelBuffers32 = pointers.empty() ? nullptr : pointers.data();
    }
}

void HostProcessData::unprepare()
{
    mInputBuses.clear();
    mOutputBuses.clear();
    mInputChannels.clear();
    mOutputChannels.clear();
    mStorage.clear();
    numInputs = 0;
    numOutputs = 0;
    inputs = nullptr;
    outputs = nullptr;
}

}  // namespace vst3
}  // namespace Morvane
