#include "vst3/hosting/ParameterChangeTransfer.h"

#include "vst3/hosting/ParameterChanges.h"

namespace Morvane {
namespace vst3 {

using namespace Steinberg;

namespace {
// Several changes per parameter may be pending between two drains (a slider
// dragged during a long stall), so the ring holds a few rounds of them.
constexpr size_t kSlotsPerParameter = 4;
constexpr size_t kMinSlots = 64;
// Room in the table for twice the parameters, so that probes stay short.
constexpr size_t kMinLatest = 32;

size_t SlotOf(Vst::ParamID id, size_t mask) { return (static_cast<size_t>(id) * 2654435761u) & mask; }

size_t TableSize(int32 maxParameters)
{
    const size_t wanted = 2 * static_cast<size_t>(maxParameters > 0 ? maxParameters : 0);
    size_t size = kMinLatest;
    while (size < wanted)
        size *= 2;
    return size;
}
}  // namespace

ParameterChangeTransfer::ParameterChangeTransfer(int32 maxParameters) { setMaxParameters(maxParameters); }

void ParameterChangeTransfer::setMaxParameters(int32 maxParameters, bool keepLatest)
{
    size_t wanted = maxParameters > 0 ? static_cast<size_t>(maxParameters) * kSlotsPerParameter : 0;
    if (wanted < kMinSlots)
        wanted = kMinSlots;
    // One slot stays free to tell a full ring from an empty one.
    mSlots.assign(wanted + 1, Change{0, 0.0, 0, 0});
    mWrite.store(0, std::memory_order_relaxed);
    mRead.store(0, std::memory_order_relaxed);
    mLatestSize = keepLatest ? TableSize(maxParameters) : 0;
    mLatest.reset(keepLatest ? new Latest[mLatestSize] : nullptr);
    mPassed.reset(keepLatest ? new Passed[mLatestSize] : nullptr);
    mStamp = 0;
    mLatestWaiting.store(false, std::memory_order_relaxed);
    mScanning = false;
    mScan = 0;
}

bool ParameterChangeTransfer::addChange(Vst::ParamID id, Vst::ParamValue value, int32 sampleOffset)
{
    const Change change{id, value, sampleOffset, ++mStamp};
    if (!mLatestWaiting.load(std::memory_order_acquire) && pushRing(change))
        return true;
    return keepLatest(change);
}

bool ParameterChangeTransfer::keepLatest(const Change& change)
{
    if (mLatestSize == 0)
        return false;
    const size_t mask = mLatestSize - 1;
    size_t slot = SlotOf(change.id, mask);
    for (size_t probe = 0; probe < mLatestSize; ++probe, slot = (slot + 1) & mask) {
        Latest& entry = mLatest[slot];
        if (entry.claimed && entry.id.load(std::memory_order_relaxed) != change.id)
            continue;
        if (!entry.claimed) {
            entry.claimed = true;
            entry.id.store(change.id, std::memory_order_relaxed);
        }
        const uint32_t sequence = entry.sequence.load(std::memory_order_relaxed);
        // Release stores rather than fences (which ThreadSanitizer cannot
        // follow): the odd count is seen before the value, the value before
        // the even count.
        entry.sequence.store(sequence + 1, std::memory_order_relaxed);
        entry.value.store(change.value, std::memory_order_release);
        entry.offset.store(change.offset, std::memory_order_release);
        entry.stamp.store(change.stamp, std::memory_order_release);
        entry.sequence.store(sequence + 2, std::memory_order_release);
        entry.pending.store(true, std::memory_order_release);
        mLatestWaiting.store(true, std::memory_order_release);
        return true;
    }
    return false;
}

// A value caught while its writer is at it stays pending: the writer marks
// it again when done, and the next pass takes the newer value.
bool ParameterChangeTransfer::takeLatest(Change& change)
{
    while (mScan < mLatestSize) {
        Latest& entry = mLatest[mScan++];
        if (!entry.pending.exchange(false, std::memory_order_acquire))
            continue;
        const uint32_t before = entry.sequence.load(std::memory_order_acquire);
        // Acquire loads keep the second count read after the value.
        const Vst::ParamValue read = entry.value.load(std::memory_order_acquire);
        const int32 offset = entry.offset.load(std::memory_order_acquire);
        const uint64_t stamp = entry.stamp.load(std::memory_order_acquire);
        const uint32_t after = entry.sequence.load(std::memory_order_relaxed);
        if ((before & 1u) != 0 || before != after)
            continue;
        change = Change{entry.id.load(std::memory_order_relaxed), read, offset, stamp};
        return true;
    }
    mScanning = false;
    return false;
}

void ParameterChangeTransfer::removeChanges()
{
    mRead.store(mWrite.load(std::memory_order_acquire), std::memory_order_release);
    mLatestWaiting.store(false, std::memory_order_release);
    for (size_t i = 0; i < mLatestSize; ++i)
        mLatest[i].pending.store(false, std::memory_order_relaxed);
    mScanning = false;
}

bool ParameterChangeTransfer::pushRing(const Change& change)
{
    const size_t write = mWrite.load(std::memory_order_relaxed);
    size_t next = write + 1;
    if (next == mSlots.size())
        next = 0;
    if (next == mRead.load(std::memory_order_acquire))
        return false;
    mSlots[write] = change;
    mWrite.store(next, std::memory_order_release);
    return true;
}

bool ParameterChangeTransfer::getNextChange(Vst::ParamID& id, Vst::ParamValue& value, int32& sampleOffset)
{
    Change change{};
    while (nextCandidate(change)) {
        if (!isNewest(change))
            continue;  // its parameter already got a newer value
        id = change.id;
        value = change.value;
        sampleOffset = change.offset;
        return true;
    }
    return false;
}

// The ring first (what it holds was written before any value waited in the
// table), then the table; changes the ring takes meanwhile come after. While
// the table is read the writer may fill the ring and the table again, so a
// table value can be newer than ring values taken after it: isNewest drops those.
bool ParameterChangeTransfer::nextCandidate(Change& change)
{
    if (mScanning)
        return takeLatest(change) || popRing(change);
    if (popRing(change))
        return true;
    if (!mLatestWaiting.exchange(false, std::memory_order_acq_rel))
        return false;
    mScanning = true;
    mScan = 0;
    return takeLatest(change) || popRing(change);
}

bool ParameterChangeTransfer::isNewest(const Change& change)
{
    if (!mPassed)
        return true;  // without the table the ring alone keeps the order
    const size_t mask = mLatestSize - 1;
    size_t slot = SlotOf(change.id, mask);
    for (size_t probe = 0; probe < mLatestSize; ++probe, slot = (slot + 1) & mask) {
        Passed& passed = mPassed[slot];
        if (!passed.used) {
            passed = Passed{change.id, change.stamp, true};
            return true;
        }
        if (passed.id == change.id) {
            if (change.stamp <= passed.stamp)
                return false;
            passed.stamp = change.stamp;
            return true;
        }
    }
    return true;  // more parameters than the table has room for: passed on unchecked
}

bool ParameterChangeTransfer::popRing(Change& change)
{
    const size_t read = mRead.load(std::memory_order_relaxed);
    if (read == mWrite.load(std::memory_order_acquire))
        return false;
    change = mSlots[read];
    size_t next = read + 1;
    if (next == mSlots.size())
        next = 0;
    mRead.store(next, std::memory_order_release);
    return true;
}

void ParameterChangeTransfer::transferChangesTo(ParameterChanges& changes)
{
    // The usual buffer: nothing came since the last one.
    if (!mScanning && mRead.load(std::memory_order_relaxed) == mWrite.load(std::memory_order_acquire) &&
        !mLatestWaiting.load(std::memory_order_acquire))
        return;
    Vst::ParamID id = 0;
    Vst::ParamValue value = 0.0;
    int32 offset = 0;
    while (getNextChange(id, value, offset)) {
        int32 index = 0;
        if (Vst::IParamValueQueue* queue = changes.addParameterData(id, index))
            queue->addPoint(offset, value, index);
    }
}

void ParameterChangeTransfer::transferChangesFrom(ParameterChanges& changes)
{
    const int32 count = changes.getParameterCount();
    for (int32 i = 0; i < count; ++i) {
        Vst::IParamValueQueue* queue = changes.getParameterData(i);
        if (!queue)
            continue;
        const Vst::ParamID id = queue->getParameterId();
        const int32 points = queue->getPointCount();
        for (int32 p = 0; p < points; ++p) {
            int32 offset = 0;
            Vst::ParamValue value = 0.0;
            if (queue->getPoint(p, offset, value) == kResultOk)
                addChange(id, value, offset);
        }
    }
}

}  // namespace vst3
}  // namespace Morvane
