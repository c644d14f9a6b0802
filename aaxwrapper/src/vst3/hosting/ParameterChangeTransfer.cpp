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
}  // namespace

ParameterChangeTransfer::ParameterChangeTransfer(int32 maxParameters) { setMaxParameters(maxParameters); }

void ParameterChangeTransfer::setMaxParameters(int32 maxParameters)
{
    size_t wanted = maxParameters > 0 ? static_cast<size_t>(maxParameters) * kSlotsPerParameter : 0;
    if (wanted < kMinSlots)
        wanted = kMinSlots;
    // One slot stays free to tell a full ring from an empty one.
    mSlots.assign(wanted + 1, Change{0, 0.0, 0});
    mWrite.store(0, std::memory_order_relaxed);
    mRead.store(0, std::memory_order_relaxed);
}

bool ParameterChangeTransfer::addChange(Vst::ParamID id, Vst::ParamValue value, int32 sampleOffset)
{
    const size_t write = mWrite.load(std::memory_order_relaxed);
    size_t next = write + 1;
    if (next == mSlots.size())
        next = 0;
    if (next == mRead.load(std::memory_order_acquire))
        return false;
    mSlots[write] = Change{id, value, sampleOffset};
    mWrite.store(next, std::memory_order_release);
    return true;
}

bool ParameterChangeTransfer::getNextChange(Vst::ParamID& id, Vst::ParamValue& value, int32& sampleOffset)
{
    const size_t read = mRead.load(std::memory_order_relaxed);
    if (read == mWrite.load(std::memory_order_acquire))
        return false;
    const Change& change = mSlots[read];
    id = change.id;
    value = change.value;
    sampleOffset = change.offset;
    size_t next = read + 1;
    if (next == mSlots.size())
        next = 0;
    mRead.store(next, std::memory_order_release);
    return true;
}

void ParameterChangeTransfer::transferChangesTo(ParameterChanges& changes)
{
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
