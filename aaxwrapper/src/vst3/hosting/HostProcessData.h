// The process data block the host hands to the processor, with its audio bus
// records sized for one component.
#pragma once

#include <vector>

#include "pluginterfaces/vst/ivstaudioprocessor.h"
#include "pluginterfaces/vst/ivstcomponent.h"

namespace Morvane {
namespace vst3 {

class HostProcessData : public Steinberg::Vst::ProcessData {
public:
    HostProcessData() = default;
    ~HostProcessData() { unprepare(); }
    HostProcessData(const HostProcessData&) = delete;
    HostProcessData& operator=(const HostProcessData&) = delete;

    // One AudioBusBuffers per audio bus of the component, each with a channel
    // pointer array; with bufferSamples > 0 the channels also get storage.
    bool prepare(Steinberg::Vst::IComponent& component, Steinberg::int32 bufferSamples,
                 Steinberg::int32 sampleSize);
    void unprepare();

private:
    void createBuses(Steinberg::Vst::IComponent& component, Steinberg::Vst::BusDirection dir,
                     Steinberg::int32 bufferSamples, std::vector<Steinberg::Vst::AudioBusBuffers>& buses,
                     std::vector<std::vector<float*>>& channels);

    std::vector<Steinberg::Vst::AudioBusBuffers> mInputBuses;
    std::vector<Steinberg::Vst::AudioBusBuffers> mOutputBuses;
    std::vector<std::vector<float*>> mInputChannels;
    std::vector<std::vector<float*>> mOutputChannels;
    std::vector<std::vector<float>> mStorage;
    Steinberg::int32 mPreparedSamples = 0;
};

}  // namespace vst3
}  // namespace Morvane
