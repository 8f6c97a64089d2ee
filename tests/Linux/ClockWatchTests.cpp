#include "Linux/Loop/ClockWatch.h"
#include "Linux/Loop/QtMainLoop.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <string>

namespace velmorquit {
namespace {

TEST(ClockWatchTest, TellsOfASleepOnceAndBeforeWhatWasDueInIt) {
    Duration slept = 5h;
    std::string told;
    ClockWatch watch([&] { return slept; });
    const Handle woke = watch.observe(ClockEvent::woke, [&] { told += "woke "; });
    const Handle set = watch.observe(ClockEvent::corrected, [&] { told += "set "; });
    watch.look();
    slept += 499ms;
    watch.look();
    EXPECT_EQ(told, "") << "two clocks are never read at the same instant";
    slept += 1ms;
    watch.look();
    watch.look();
    EXPECT_EQ(told, "woke ");
    slept += 9h;
    watch.look();
    EXPECT_EQ(told, "woke woke ");
}

TEST(ClockWatchTest, NothingHappensToClocksThatAreLeftAlone) {
    EXPECT_GE(ClockWatch::sleepSinceStart(), Duration(-1ms));
    QtMainLoop loop;
    int events = 0;
    const Handle woke = loop.observe(ClockEvent::woke, [&] { ++events; });
    const Handle set = loop.observe(ClockEvent::corrected, [&] { ++events; });
    const Handle tick = loop.every(5ms, [] {});
    linger(100);
    EXPECT_EQ(events, 0);
}

} // namespace
} // namespace velmorquit
