// A host-side VST 3 event list with storage fixed at construction, so that
// filling it on the audio thread never allocates.
#pragma once

#include <vector>

#include "pluginterfaces/vst/ivstevents.h"

namespace Morvane {
namespace vst3 {

class EventList : public Steinberg::Vst::IEventList {
public:
    explicit EventList(Steinberg::int32 maxEvents = 2048);
    virtual ~EventList() = default;

    Steinberg::int32 PLUGIN_API getEventCount() override { return mCount; }
    Steinberg::tresult PLUGIN_API getEvent(Steinberg::int32 index, Steinberg::Vst::Event& e) override;
    // Refuses (kResultFalse) once the list is full: the event is dropped.
    Steinberg::tresult PLUGIN_API addEvent(Steinberg::Vst::Event& e) override;

    // The host's own way in: the next free record, to be filled in place
    // (no copy, no virtual call), or null when the list is full.
    Steinberg::Vst::Event* append()
    {
        return mCount < static_cast<Steinberg::int32>(mEvents.size()) ? &mEvents[static_cast<size_t>(mCount++)]
                                                                       : nullptr;
    }
    // The host's bulk way in: the free records [freeBegin(), freeEnd()) are
    // filled in place, then commit() counts every record before `next`.
    Steinberg::Vst::Event* freeBegin() { return mEvents.data() + mCount; }
    Steinberg::Vst::Event* freeEnd() { return mEvents.data() + mEvents.size(); }
    void commit(const Steinberg::Vst::Event* next) { mCount = static_cast<Steinberg::int32>(next - mEvents.data()); }
    // Takes back the record append gave last (a message that is no note).
    void dropLast()
    {
        if (mCount > 0)
            --mCount;
    }

    void clear() { mCount = 0; }
    Steinberg::int32 capacity() const { return static_cast<Steinberg::int32>(mEvents.size()); }

    // The host owns the list; a plug-in may not keep it beyond process().
    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef() override { return 1; }
    Steinberg::uint32 PLUGIN_API release() override { return 1; }

private:
    std::vector<Steinberg::Vst::Event> mEvents;
    Steinberg::int32 mCount = 0;
};

}  // namespace vst3
}  // namespace Morvane
