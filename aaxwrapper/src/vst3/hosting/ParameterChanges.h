// Host-side VST 3 parameter change lists. Every queue and every point slot
// is allocated when the list is sized, on the main thread; filling and
// clearing on the audio thread only moves counters.
#pragma once

#include <memory>
#include <vector>

#include "pluginterfaces/vst/ivstparameterchanges.h"

namespace Morvane {
namespace vst3 {

class ParameterValueQueue : public Steinberg::Vst::IParamValueQueue {
public:
    static constexpr Steinberg::int32 kDefaultMaxPoints = 128;

    explicit ParameterValueQueue(Steinberg::int32 maxPoints = kDefaultMaxPoints);
    virtual ~ParameterValueQueue() = default;

    void reset(Steinberg::Vst::ParamID id) { mId = id; mCount = 0; }

    Steinberg::Vst::ParamID PLUGIN_API getParameterId() override { return mId; }
    Steinberg::int32 PLUGIN_API getPointCount() override { return mCount; }
    Steinberg::tresult PLUGIN_API getPoint(Steinberg::int32 index, Steinberg::int32& sampleOffset,
                                           Steinberg::Vst::ParamValue& value) override;
    // Keeps points ordered by offset; a point at an existing offset replaces it.
    Steinberg::tresult PLUGIN_API addPoint(Steinberg::int32 sampleOffset, Steinberg::Vst::ParamValue value,
                                           Steinberg::int32& index) override;

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

private:
    struct Point {
        Steinberg::int32 offset;
        Steinberg::Vst::ParamValue value;
    };
    std::vector<Point> mPoints;
    Steinberg::int32 mCount = 0;
    Steinberg::Vst::ParamID mId = 0;
};

class ParameterChanges : public Steinberg::Vst::IParameterChanges {
public:
    explicit ParameterChanges(Steinberg::int32 maxParameters = 0);
    virtual ~ParameterChanges() = default;

    // Main thread only: reallocates the queues.
    void setMaxParameters(Steinberg::int32 maxParameters);
    Steinberg::int32 getMaxParameters() const { return static_cast<Steinberg::int32>(mQueues.size()); }
    void clearQueue() { mUsed = 0; }

    Steinberg::int32 PLUGIN_API getParameterCount() override { return mUsed; }
    Steinberg::Vst::IParamValueQueue* PLUGIN_API getParameterData(Steinberg::int32 index) override;
    // Gives the queue already used for id in this block, or a fresh one;
    // null when every queue is taken.
    Steinberg::Vst::IParamValueQueue* PLUGIN_API addParameterData(const Steinberg::Vst::ParamID& id,
                                                                  Steinberg::int32& index) override;

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

private:
    std::vector<std::unique_ptr<ParameterValueQueue>> mQueues;
    Steinberg::int32 mUsed = 0;
};

}  // namespace vst3
}  // namespace Morvane
