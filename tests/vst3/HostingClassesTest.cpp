// Our SDK hosting classes on their own, and the hand-over between the main
// and the audio thread (meant to run under TSan as well). Host changes while
// a wrapped plug-in processes are aaxhost validate's threads check.
#include <algorithm>
#include <atomic>
#include <map>
#include <thread>

#include "Vst3TestSupport.h"
#include "vst3/hosting/EventList.h"
#include "vst3/hosting/ParameterChangeTransfer.h"
#include "vst3/hosting/ParameterChanges.h"
#include "vst3/hosting/Timer.h"

using namespace vst3test;
using namespace Morvane::vst3;
using namespace Steinberg;
using namespace Steinberg::Vst;

// Fixed capacities: the audio thread never grows them, so overflow must drop.
TEST(Vst3Hosting, ContainersDropBeyondCapacityAndRefuseBadIndices)
{
    EventList list(2);
    Event e{};
    EXPECT_EQ(list.addEvent(e), kResultOk);
    EXPECT_EQ(list.addEvent(e), kResultOk);
    EXPECT_EQ(list.addEvent(e), kResultFalse);
    EXPECT_EQ(list.getEvent(2, e), kInvalidArgument);
    EXPECT_EQ(list.getEvent(-1, e), kInvalidArgument);

    ParameterChanges changes(2);
    int32 index = -1;
    IParamValueQueue* a = changes.addParameterData(7, index);
    ASSERT_NE(a, nullptr);
    EXPECT_EQ(changes.addParameterData(7, index), a);
    EXPECT_NE(changes.addParameterData(9, index), nullptr);
    EXPECT_EQ(changes.addParameterData(11, index), nullptr);
    int32 p = 0;
    a->addPoint(10, 0.1, p);
    a->addPoint(2, 0.2, p);
    a->addPoint(10, 0.3, p);  // same offset replaces
    ASSERT_EQ(a->getPointCount(), 2);
    int32 offset = 0;
    ParamValue value = 0;
    a->getPoint(0, offset, value);
    EXPECT_EQ(offset, 2);
    a->getPoint(1, offset, value);
    EXPECT_EQ(value, 0.3);
    EXPECT_EQ(a->getPoint(2, offset, value), kInvalidArgument);
    changes.clearQueue();
    EXPECT_EQ(changes.getParameterData(0), nullptr);
    IParamValueQueue* again = changes.addParameterData(5, index);
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->getPointCount(), 0);  // a reused queue starts empty
}

// A burst longer than the ring between two drains: every change the ring
// took arrives in order, and after them each parameter's last value.
TEST(Vst3Hosting, TransferKeepsEachParametersLastValueWhenTheRingIsFull)
{
    ParameterChangeTransfer transfer(1);
    const size_t capacity = transfer.capacity();
    for (size_t i = 0; i < capacity; ++i)
        ASSERT_TRUE(transfer.addChange(static_cast<ParamID>(i % 3), static_cast<double>(i), 0));
    for (int i = 0; i < 1000; ++i) {
        ASSERT_TRUE(transfer.addChange(1, 2000.0 + i, 5));
        ASSERT_TRUE(transfer.addChange(99, 5000.0 + i, 7));
    }
    std::vector<std::pair<ParamID, double>> got;
    ParamID id = 0;
    ParamValue value = 0;
    int32 offset = 0;
    while (transfer.getNextChange(id, value, offset))
        got.push_back({id, value});
    ASSERT_EQ(got.size(), capacity + 2);
    for (size_t i = 0; i < capacity; ++i)
        EXPECT_EQ(got[i], (std::pair<ParamID, double>{static_cast<ParamID>(i % 3), static_cast<double>(i)}));
    std::map<ParamID, double> last;
    for (size_t i = capacity; i < got.size(); ++i)
        last[got[i].first] = got[i].second;
    EXPECT_EQ(last, (std::map<ParamID, double>{{1, 2999.0}, {99, 5999.0}}));

    // Emptied, the ring takes changes again, after nothing stale.
    ASSERT_TRUE(transfer.addChange(1, 0.25, 0));
    ASSERT_TRUE(transfer.getNextChange(id, value, offset));
    EXPECT_EQ(value, 0.25);
    EXPECT_FALSE(transfer.getNextChange(id, value, offset));

    // A restored state drops what waits, in the table too.
    for (size_t i = 0; i <= capacity; ++i)
        transfer.addChange(4, 0.5, 0);
    transfer.removeChanges();
    EXPECT_FALSE(transfer.getNextChange(id, value, offset));
}

// The reader is halfway through the table when the writer refills the ring
// and then the table: the table's newer value must not be followed by the
// ring's older ones (a loaded machine lost a burst's last value this way).
// Both orders of the two parameters, since which the reader meets first
// depends on where they land in the table.
TEST(Vst3Hosting, TransferNeverLetsAnOlderValueFollowANewerOne)
{
    for (const auto& [first, second] : {std::pair<ParamID, ParamID>{0, 3}, {3, 0}}) {
        ParameterChangeTransfer transfer(4);
        const size_t capacity = transfer.capacity();
        std::map<ParamID, double> newest, delivered;
        double next = 1.0;
        auto add = [&](ParamID id) {
            ASSERT_TRUE(transfer.addChange(id, next, 0));
            newest[id] = next++;
        };
        auto take = [&]() {
            ParamID id = 0;
            ParamValue value = 0;
            int32 offset = 0;
            if (!transfer.getNextChange(id, value, offset))
                return false;
            EXPECT_GT(value, delivered[id]) << "parameter " << id << " went back in time";
            delivered[id] = value;
            return true;
        };
        for (size_t i = 0; i <= capacity; ++i)
            add(second);  // the last one waits in the table
        add(first);
        for (size_t i = 0; i < capacity; ++i)
            ASSERT_TRUE(take());
        ASSERT_TRUE(take());  // the first table value: the reader is now in the table
        for (size_t i = 0; i <= capacity; ++i)
            add(second);  // the ring full again, the last one in the table again
        while (take()) {
        }
        EXPECT_EQ(delivered, newest) << "first " << first;
    }
}

TEST(Vst3Hosting, TransferBetweenTwoThreads)
{
    ParameterChangeTransfer transfer(4);
    ParameterChanges changes(4);
    constexpr int kChanges = 50000;
    std::atomic<bool> done{false};
    std::thread producer([&] {
        for (int i = 0; i < kChanges; ++i) {
            while (!transfer.addChange(static_cast<ParamID>(i % 4), static_cast<double>(i), i % 64))
                std::this_thread::yield();
        }
        done = true;
    });
    double last[4] = {-1, -1, -1, -1};
    bool ordered = true;
    long points = 0;
    for (;;) {
        const bool finished = done.load();
        changes.clearQueue();
        transfer.transferChangesTo(changes);
        for (int32 q = 0; q < changes.getParameterCount(); ++q) {
            IParamValueQueue* queue = changes.getParameterData(q);
            const ParamID id = queue->getParameterId();
            for (int32 p = 0; p < queue->getPointCount(); ++p) {
                int32 offset = 0;
                ParamValue value = 0;
                queue->getPoint(p, offset, value);
                // Each value names its own offset and parameter.
                ordered = ordered && static_cast<int>(value) % 64 == offset && static_cast<int>(value) % 4 == static_cast<int>(id);
                last[id] = std::max(last[id], value);
                ++points;
            }
        }
        if (finished && changes.getParameterCount() == 0)
            break;
    }
    producer.join();
    EXPECT_TRUE(ordered);
    EXPECT_GT(points, 0);
    EXPECT_EQ(last[(kChanges - 1) % 4], kChanges - 1);
}

TEST(Vst3Hosting, TimerStopsBeforeReturning)
{
    struct Counter : ITimerCallback {
        void onTimer(Timer*) override { ++ticks; }
        std::atomic<int> ticks{0};
    } counter;
    auto timer = Timer::create(&counter, 5);
    ASSERT_NE(timer, nullptr);
    while (counter.ticks < 3)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    timer.reset();
    const int after = counter.ticks;
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
    EXPECT_EQ(counter.ticks, after);
    EXPECT_EQ(Timer::create(nullptr, 5), nullptr);
}
