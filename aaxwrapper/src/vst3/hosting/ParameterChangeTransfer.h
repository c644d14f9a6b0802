// Hands parameter changes from one thread to another: a lock-free ring with
// exactly one writing thread and one reading thread, sized on the main thread
// before either side runs. When the ring is full, the latest value of each
// parameter waits in a table made at the same time (no value is lost, none
// is allocated). Every change carries the writer's running count, and the
// reader passes on a parameter's change only if it is newer than the last it
// passed on for that parameter: a table value taken while the ring refilled
// may be newer than what the ring still holds, and must not be overtaken.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "pluginterfaces/vst/vsttypes.h"

namespace Morvane {
namespace vst3 {

class ParameterChanges;

class ParameterChangeTransfer {
public:
    explicit ParameterChangeTransfer(Steinberg::int32 maxParameters = 0);

    // Not thread-safe: call while neither side is running. Without
    // keepLatest a change that finds the ring full is dropped.
    void setMaxParameters(Steinberg::int32 maxParameters, bool keepLatest = true);
    size_t capacity() const { return mSlots.size() - 1; }

    // Producer side. False only when the ring is full and the table has no
    // room for one more parameter: the change is dropped.
    bool addChange(Steinberg::Vst::ParamID id, Steinberg::Vst::ParamValue value, Steinberg::int32 sampleOffset);
    // Producer side: every point of every queue of the processor's output.
    void transferChangesFrom(ParameterChanges& changes);

    // Consumer side.
    bool getNextChange(Steinberg::Vst::ParamID& id, Steinberg::Vst::ParamValue& value, Steinberg::int32& sampleOffset);
    // Consumer side: moves every pending change into the block's input changes.
    void transferChangesTo(ParameterChanges& changes);

    // Consumer side.
    void removeChanges();

private:
    struct Change {
        Steinberg::Vst::ParamID id;
        Steinberg::Vst::ParamValue value;
        Steinberg::int32 offset;
        uint64_t stamp;
    };
    // One parameter's latest value while the ring was full. The writer
    // brackets its write with an odd sequence number; a reader that sees
    // one leaves the entry, which the writer marks pending again.
    struct Latest {
        std::atomic<Steinberg::Vst::ParamID> id{0};
        std::atomic<double> value{0.0};
        std::atomic<Steinberg::int32> offset{0};
        std::atomic<uint64_t> stamp{0};
        std::atomic<uint32_t> sequence{0};
        std::atomic<bool> pending{false};
        bool claimed = false;  // writer only
    };
    // The last count passed on for one parameter (reader only).
    struct Passed {
        Steinberg::Vst::ParamID id = 0;
        uint64_t stamp = 0;
        bool used = false;
    };
    bool pushRing(const Change& change);
    bool popRing(Change& change);
    bool keepLatest(const Change& change);
    bool takeLatest(Change& change);
    bool nextCandidate(Change& change);
    bool isNewest(const Change& change);

    std::vector<Change> mSlots;
    alignas(64) std::atomic<size_t> mWrite{0};
    alignas(64) std::atomic<size_t> mRead{0};
    std::unique_ptr<Latest[]> mLatest;
    size_t mLatestSize = 0;  // a power of two; 0: changes are dropped when the ring is full
    uint64_t mStamp = 0;     // writer only
    std::unique_ptr<Passed[]> mPassed;  // as large as the table, reader only
    // Set by the writer once a value waits in the table: from then on every
    // change goes there until the reader has taken the table's values, so
    // that no older value overtakes a newer one.
    alignas(64) std::atomic<bool> mLatestWaiting{false};
    // Reader only: a pass over the table in progress.
    bool mScanning = false;
    size_t mScan = 0;
};

}  // namespace vst3
}  // namespace Morvane
