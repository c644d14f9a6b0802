// The frame through which a VST 3 editor asks its host for a new size; the
// request is passed on to the AAX view container. On Linux, a frame made for
// an X11 container is also the editor's run loop (IRunLoop): the AAX host
// owns the event loop, so the wrapper serves the editor's file descriptors
// and timers from its own timer call (ServiceRunLoop).
#pragma once

#include <atomic>
#include <chrono>
#include <vector>

#include "pluginterfaces/gui/iplugview.h"

class AAX_IViewContainer;

class CPlugFrame : public Steinberg::IPlugFrame
#if !defined(__APPLE__) && !defined(_WIN32)
    , public Steinberg::Linux::IRunLoop
#endif
{
public:
    explicit CPlugFrame(AAX_IViewContainer* container, bool runLoop = false)
        : mContainer(container), mRunLoop(runLoop)
    {
    }

    Steinberg::tresult PLUGIN_API queryInterface(const Steinberg::TUID iid, void** obj) override;
    Steinberg::uint32 PLUGIN_API addRef() override;
    Steinberg::uint32 PLUGIN_API release() override;
    Steinberg::tresult PLUGIN_API resizeView(Steinberg::IPlugView* view, Steinberg::ViewRect* newSize) override;

#if !defined(__APPLE__) && !defined(_WIN32)
    Steinberg::tresult PLUGIN_API registerEventHandler(Steinberg::Linux::IEventHandler* handler,
                                                       Steinberg::Linux::FileDescriptor fd) override;
    Steinberg::tresult PLUGIN_API unregisterEventHandler(Steinberg::Linux::IEventHandler* handler) override;
    Steinberg::tresult PLUGIN_API registerTimer(Steinberg::Linux::ITimerHandler* handler,
                                                Steinberg::Linux::TimerInterval milliseconds) override;
    Steinberg::tresult PLUGIN_API unregisterTimer(Steinberg::Linux::ITimerHandler* handler) override;
#endif
    // Main thread: calls the handlers whose descriptors are readable (a poll
    // that does not wait) and the timers that are due.
    void ServiceRunLoop();
    // Gives back every handler still registered (the view is going).
    void DropHandlers();

    virtual ~CPlugFrame();

private:
#if !defined(__APPLE__) && !defined(_WIN32)
    struct SEventHandler {
        Steinberg::Linux::IEventHandler* handler;
        Steinberg::Linux::FileDescriptor fd;
    };
    struct STimer {
        Steinberg::Linux::ITimerHandler* handler;
        std::chrono::milliseconds interval;
        std::chrono::steady_clock::time_point due;
    };
    std::vector<SEventHandler> mEventHandlers;
    std::vector<STimer> mTimers;
#endif
    std::atomic<Steinberg::int32> mRefCount{1};
    AAX_IViewContainer* mContainer;
    bool mRunLoop;
};
