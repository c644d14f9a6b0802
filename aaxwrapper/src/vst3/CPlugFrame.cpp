#include "vst3/CPlugFrame.h"

#include <poll.h>

#include <algorithm>

#include "AAX_IViewContainer.h"
#include "logger/CLog.h"

using namespace Steinberg;

CPlugFrame::~CPlugFrame() { DropHandlers(); }

tresult PLUGIN_API CPlugFrame::queryInterface(const TUID iid, void** obj)
{
    if (FUnknownPrivate::iidEqual(iid, FUnknown::iid) || FUnknownPrivate::iidEqual(iid, IPlugFrame::iid)) {
        addRef();
        *obj = static_cast<IPlugFrame*>(this);
        return kResultOk;
    }
#if !defined(__APPLE__) && !defined(_WIN32)
    if (mRunLoop && FUnknownPrivate::iidEqual(iid, Linux::IRunLoop::iid)) {
        addRef();
        *obj = static_cast<Linux::IRunLoop*>(this);
        return kResultOk;
    }
#endif
    *obj = nullptr;
    return kNoInterface;
}

uint32 PLUGIN_API CPlugFrame::addRef() { return static_cast<uint32>(++mRefCount); }

uint32 PLUGIN_API CPlugFrame::release()
{
    const int32 count = --mRefCount;
    if (count == 0)
        delete this;
    return static_cast<uint32>(count);
}

tresult PLUGIN_API CPlugFrame::resizeView(IPlugView* /*view*/, ViewRect* newSize)
{
    if (!newSize)
        return kInvalidArgument;
    const int32 width = newSize->right - newSize->left;
    const int32 height = newSize->bottom - newSize->top;
    MV_LOG("gui", kLogInfo, "Plugin ask to resize width=", width, " height=", height);
    if (mContainer) {
        AAX_Point size(static_cast<float>(height), static_cast<float>(width));
        mContainer->SetViewSize(size);
    }
    // The plug-in resizes its own view; only the AAX window follows.
    return kResultOk;
}

#if !defined(__APPLE__) && !defined(_WIN32)

namespace {

// Drops every entry of `handler`, giving back the reference each one held.
template <typename Entry, typename Handler>
bool ReleaseEntriesOf(std::vector<Entry>& entries, Handler* handler)
{
    // A partition, not remove_if: the dropped entries must still be there
    // to be released.
    const auto first = std::stable_partition(entries.begin(), entries.end(), [handler](const Entry& e) {
        return e.handler != handler;
    });
    for (auto it = first; it != entries.end(); ++it)
        it->handler->release();
    const bool found = first != entries.end();
    entries.erase(first, entries.end());
    return found;
}

}  // namespace

tresult PLUGIN_API CPlugFrame::registerEventHandler(Linux::IEventHandler* handler, Linux::FileDescriptor fd)
{
    if (!handler || fd < 0)
        return kInvalidArgument;
    handler->addRef();
    mEventHandlers.push_back({handler, fd});
    return kResultOk;
}

tresult PLUGIN_API CPlugFrame::unregisterEventHandler(Linux::IEventHandler* handler)
{
    return ReleaseEntriesOf(mEventHandlers, handler) ? kResultOk : kInvalidArgument;
}

tresult PLUGIN_API CPlugFrame::registerTimer(Linux::ITimerHandler* handler, Linux::TimerInterval milliseconds)
{
    if (!handler)
        return kInvalidArgument;
    handler->addRef();
    const auto interval = std::chrono::milliseconds(std::max<Linux::TimerInterval>(milliseconds, 1));
    mTimers.push_back({handler, interval, std::chrono::steady_clock::now() + interval});
    return kResultOk;
}

tresult PLUGIN_API CPlugFrame::unregisterTimer(Linux::ITimerHandler* handler)
{
    return ReleaseEntriesOf(mTimers, handler) ? kResultOk : kInvalidArgument;
}

void CPlugFrame::ServiceRunLoop()
{
    // Handlers may unregister (themselves or others) while called: work on
    // copies, holding a reference to each.
    std::vector<SEventHandler> handlers;
    if (!mEventHandlers.empty()) {
        std::vector<pollfd> fds;
        for (const SEventHandler& h : mEventHandlers)
            fds.push_back({h.fd, POLLIN, 0});
        if (poll(fds.data(), static_cast<nfds_t>(fds.size()), 0) > 0)
            for (size_t i = 0; i < fds.size(); ++i)
                if (fds[i].revents & (POLLIN | POLLHUP | POLLERR)) {
                    mEventHandlers[i].handler->addRef();
                    handlers.push_back(mEventHandlers[i]);
                }
    }
    for (const SEventHandler& h : handlers) {
        h.handler->onFDIsSet(h.fd);
        h.handler->release();
    }
    const auto now = std::chrono::steady_clock::now();
    std::vector<Linux::ITimerHandler*> due;
    for (STimer& t : mTimers) {
        if (now < t.due)
            continue;
        t.handler->addRef();
        due.push_back(t.handler);
        t.due = now + t.interval;
    }
    for (Linux::ITimerHandler* handler : due) {
        handler->onTimer();
        handler->release();
    }
}

void CPlugFrame::DropHandlers()
{
    for (const SEventHandler& h : mEventHandlers)
        h.handler->release();
    mEventHandlers.clear();
    for (const STimer& t : mTimers)
        t.handler->release();
    mTimers.clear();
}

#else

void CPlugFrame::ServiceRunLoop() {}
void CPlugFrame::DropHandlers() {}

#endif
