#include "vst3/hosting/EventList.h"

namespace Morvane {
namespace vst3 {

using namespace Steinberg;

EventList::EventList(int32 maxEvents) : mEvents(maxEvents > 0 ? static_cast<size_t>(maxEvents) : 0u) {}

tresult PLUGIN_API EventList::getEvent(int32 index, Vst::Event& e)
{
    if (index < 0 || index >= mCount)
        return kInvalidArgument;
    e = mEvents[static_cast<size_t>(index)];
    return kResultOk;
}

tresult PLUGIN_API EventList::addEvent(Vst::Event& e)
{
    if (mCount >= capacity())
        return kResultFalse;
    mEvents[static_cast<size_t>(mCount++)] = e;
    return kResultOk;
}

tresult PLUGIN_API EventList::queryInterface(const TUID iid, void** obj)
{
    if (FUnknownPrivate::iidEqual(iid, FUnknown::iid) || FUnknownPrivate::iidEqual(iid, Vst::IEventList::iid)) {
        *obj = static_cast<Vst::IEventList*>(this);
        return kResultOk;
    }
    *obj = nullptr;
    return kNoInterface;
}

}  // namespace vst3
}  // namespace Morvane
