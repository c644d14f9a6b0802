// The plug frame as a Linux editor's run loop: descriptors and timers served
// from the wrapper's timer call, handlers that come and go while they are
// called, and every reference given back.
#include <unistd.h>

#include <chrono>
#include <functional>
#include <thread>

#include <gtest/gtest.h>

#include "vst3/CPlugFrame.h"

using namespace Steinberg;

namespace {

// A handler of both kinds that counts its calls and its references, and can
// act while it is called.
class CCountingHandler : public Linux::IEventHandler, public Linux::ITimerHandler {
public:
    void PLUGIN_API onFDIsSet(Linux::FileDescriptor fd) override
    {
        ++fdCalls;
        lastFd = fd;
        if (whileCalled)
            whileCalled();
    }
    void PLUGIN_API onTimer() override
    {
        ++timerCalls;
        if (whileCalled)
            whileCalled();
    }
    tresult PLUGIN_API queryInterface(const TUID, void** obj) override
    {
        *obj = nullptr;
        return kNoInterface;
    }
    uint32 PLUGIN_API addRef() override { return static_cast<uint32>(++references); }
    uint32 PLUGIN_API release() override { return static_cast<uint32>(--references); }

    int fdCalls = 0, timerCalls = 0, references = 0;
    int lastFd = -1;
    std::function<void()> whileCalled;
};

struct SPipe {
    int fds[2] = {-1, -1};
    SPipe() { EXPECT_EQ(pipe(fds), 0); }
    ~SPipe()
    {
        close(fds[0]);
        close(fds[1]);
    }
    void MakeReadable() { EXPECT_EQ(write(fds[1], "x", 1), 1); }
};

}  // namespace

// Only a frame for an X11 window is a run loop; there a readable descriptor
// calls its handler and a quiet one does not.
TEST(PlugFrameRunLoop, AReadableDescriptorCallsItsHandlerAndAQuietOneDoesNot)
{
    // Handlers outlive the frame, which gives back what is still registered.
    CCountingHandler readable, quiet;
    SPipe a, b;
    CPlugFrame plain(nullptr), frame(nullptr, true);
    void* obj = nullptr;
    EXPECT_EQ(plain.queryInterface(Linux::IRunLoop::iid, &obj), kNoInterface);
    EXPECT_EQ(obj, nullptr);
    ASSERT_EQ(frame.queryInterface(Linux::IRunLoop::iid, &obj), kResultOk);
    EXPECT_EQ(obj, static_cast<Linux::IRunLoop*>(&frame));
    frame.release();  // the reference the query gave
    ASSERT_EQ(frame.registerEventHandler(&readable, a.fds[0]), kResultOk);
    ASSERT_EQ(frame.registerEventHandler(&quiet, b.fds[0]), kResultOk);
    EXPECT_EQ(frame.registerEventHandler(nullptr, a.fds[0]), kInvalidArgument);
    EXPECT_EQ(frame.registerEventHandler(&quiet, -1), kInvalidArgument);
    frame.ServiceRunLoop();
    EXPECT_EQ(readable.fdCalls, 0);
    a.MakeReadable();
    frame.ServiceRunLoop();
    EXPECT_EQ(readable.fdCalls, 1);
    EXPECT_EQ(readable.lastFd, a.fds[0]);
    EXPECT_EQ(quiet.fdCalls, 0);
    EXPECT_EQ(frame.unregisterEventHandler(&readable), kResultOk);
    EXPECT_EQ(frame.unregisterEventHandler(&readable), kInvalidArgument);
    frame.ServiceRunLoop();
    EXPECT_EQ(readable.fdCalls, 1);
    EXPECT_EQ(readable.references, 0);
    EXPECT_EQ(quiet.references, 1);  // still registered, given back when the frame goes
}

TEST(PlugFrameRunLoop, HandlersMayUnregisterThemselvesAndOthersWhileCalled)
{
    auto* frame = new CPlugFrame(nullptr, true);
    CCountingHandler first, second;
    SPipe a, b;
    frame->registerEventHandler(&first, a.fds[0]);
    frame->registerEventHandler(&second, b.fds[0]);
    frame->registerTimer(&first, 1);
    first.whileCalled = [&] {
        frame->unregisterEventHandler(&first);
        frame->unregisterEventHandler(&second);
        frame->unregisterTimer(&first);
    };
    a.MakeReadable();
    b.MakeReadable();
    std::this_thread::sleep_for(std::chrono::milliseconds(5));
    frame->ServiceRunLoop();
    EXPECT_EQ(first.fdCalls, 1);
    // Both were readable when the round began: the second is still called
    // once, on the reference the round holds, never after its release.
    EXPECT_LE(second.fdCalls, 1);
    EXPECT_EQ(first.references, 0);
    EXPECT_EQ(second.references, 0);
    frame->ServiceRunLoop();
    EXPECT_EQ(first.fdCalls, 1);
    EXPECT_EQ(first.timerCalls, 0);
    frame->release();
}

TEST(PlugFrameRunLoop, TimersFireWhenDueUntilUnregisteredAndTheFrameGivesBackTheRest)
{
    auto* frame = new CPlugFrame(nullptr, true);
    CCountingHandler timer, fd;
    SPipe p;
    // Long enough that no stall of a loaded machine makes it due early.
    constexpr auto kInterval = std::chrono::milliseconds(300);
    ASSERT_EQ(frame->registerTimer(&timer, kInterval.count()), kResultOk);
    frame->registerEventHandler(&fd, p.fds[0]);
    frame->ServiceRunLoop();
    EXPECT_EQ(timer.timerCalls, 0);  // not due yet
    std::this_thread::sleep_for(kInterval + std::chrono::milliseconds(20));
    frame->ServiceRunLoop();
    EXPECT_EQ(timer.timerCalls, 1);
    frame->ServiceRunLoop();
    EXPECT_EQ(timer.timerCalls, 1);  // the next one is an interval later
    std::this_thread::sleep_for(kInterval + std::chrono::milliseconds(20));
    frame->ServiceRunLoop();
    EXPECT_EQ(timer.timerCalls, 2);
    EXPECT_EQ(timer.references, 1);
    EXPECT_EQ(fd.references, 1);
    // A view that goes without unregistering: the frame gives back both.
    frame->release();
    EXPECT_EQ(timer.references, 0);
    EXPECT_EQ(fd.references, 0);
}
