// Hands parameter changes from one thread to another: a lock-free ring with
// exactly one writing thread and one reading thread, sized on the main thread
// before either side runs.
#pragma once

#include <atomic>
#include <cstddef>
#include <vector>

#include "pluginterfaces/vst/vsttypes.h"

namespace Morvane {
namespace vst3 {

class ParameterChanges;

class ParameterChangeTransfer {
public:
    explicit ParameterChangeTransfer(Steinberg::int32 maxParameters = 0);

    // Not thread-safe: call while neither side is running.
    void setMaxParameters(Steinberg::int32 maxParameters);
    size_t capacity() const { return mSlots.size() - 1; }

    // Producer side. False when the ring is full: the change is dropped.
    bool addChange(Steinberg::Vst::ParamID id, Steinberg::Vst::ParamValue value, Steinberg::int32 sampleOffset);
    // Producer side: every point of every queue of the processor's output.
    void transferChangesFrom(ParameterChanges& changes);

    // Consumer side.
    bool getNextChange(Steinberg::Vst::ParamID& id, Steinberg::Vst::ParamValue& value, Steinberg::int32& sampleOffset);
    // Consumer side: moves every pending change into the block's input changes.
    void transferChangesTo(ParameterChanges& changes);

    // Consumer side.
    void removeChanges() { mRead.store(mWrite.load(std::memory_order_acquire), std::memory_order_release); }

private:
    struct Change {
        Steinberg::Vst::ParamID id;
        Steinberg::Vst::ParamValue value;
        Steinberg::int32 offset;
    };
    std::vector<Change> mSlots;
    alignas(64) std::atomic<size_t> mWrite{0};
    alignas(64) std::atomic<size_t> mRead{0};
};

}  // namespace vst3
}  // namespace Morvane
