#include "Services/AudioActivity.h"
#include "Services/MacInfo.h"
#include "Services/MemoryMonitor.h"
#include "Simulated/SimulatedDesktop.h"

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

using Footprints = std::map<ProcessId, std::uint64_t>;

class ProbeTest : public testing::Test {
protected:
    SimulatedDesktop desktop;
    SimulatedKernel& kernel = desktop.kernel;
};

TEST_F(ProbeTest, UsedMemoryLeavesOutWhatCanBeTakenAwayAndIsNeverMoreThanThereIs) {
    kernel.total = 100'000;
    kernel.pages =
        MemoryPages{.pageSize = 1000, .internal = 20, .purgeable = 5, .wired = 7, .compressor = 11};
    EXPECT_EQ(MemoryMonitor::system(kernel).used, 33'000U);
    kernel.pages->purgeable = 50;
    EXPECT_EQ(MemoryMonitor::system(kernel).used, 18'000U);
    kernel.pages->wired = 1000;
    EXPECT_EQ(MemoryMonitor::system(kernel).used, 100'000U);
    kernel.pages.reset();
    EXPECT_EQ(MemoryMonitor::system(kernel),
              (MemoryMonitor::SystemMemory{.used = 0, .total = 100'000}));
}

TEST_F(ProbeTest, AnApplicationIsCountedWithItsDescendantsAndThoseItAnswersFor) {
    kernel.add({10, 1, 0}, 1);
    kernel.add({11, 10, 0}, 2);
    kernel.add({12, 11, 0}, 4);
    kernel.add({13, 1, 10}, 8);
    kernel.add({14, 13, 0}, 16);  // a child of one that it answers for is not its own
    kernel.add({15, 12, 10}, 32); // both a descendant and answered for: once
    EXPECT_EQ(MemoryMonitor::footprints(kernel, {10}), (Footprints{{10, 47}}));
}

TEST_F(ProbeTest, OneThatWasAskedForItselfCountsInBothGroupsByDescentButNotByResponsibility) {
    kernel.add({10, 1, 0}, 1);
    kernel.add({20, 10, 0}, 2);
    kernel.add({30, 1, 10}, 4);
    EXPECT_EQ(MemoryMonitor::footprints(kernel, {10, 20, 30, 10}),
              (Footprints{{10, 3}, {20, 2}, {30, 4}}));
}

TEST_F(ProbeTest, WhatHasGoneOrFormsACircleCountsForWhatItIs) {
    kernel.add({10, 11, 0}, 1);
    kernel.add({11, 10, 0}, 2);
    kernel.add({0, 1, 10}, 50);
    kernel.add({1, 0, 10}, 50);
    EXPECT_EQ(MemoryMonitor::footprints(kernel, {10, 99}), (Footprints{{10, 3}, {99, 0}}));
    kernel.isBlind = true;
    EXPECT_EQ(MemoryMonitor::footprints(kernel, {10}), (Footprints{{10, 0}}));
    EXPECT_TRUE(MemoryMonitor::footprints(kernel, {}).empty());
}

TEST_F(ProbeTest, SoundIsCountedToTheApplicationThatAnswersForIt) {
    kernel.add({13, 1, 10}, 0);
    desktop.audio.busy = {13, 10, 20};
    std::set<ProcessId> apps;
    AudioActivity::busyApps(desktop.audio, kernel, [&](const auto& found) { apps = found; });
    EXPECT_TRUE(apps.empty());
    desktop.loop.settle();
    EXPECT_EQ(apps, (std::set<ProcessId>{10, 20}));
}

TEST_F(ProbeTest, TheProcessorIsNamedShortly) {
    const std::pair<const char*, const char*> names[] = {
        {"Intel(R) Core(TM) i9-9880H CPU @ 2.30GHz", "Intel Core i9"},
        {"12th Gen Intel(R) Core(TM) i5-1240P", "Intel Core i5"},
        {"Intel(R) is i x9 ix Xeon(R)", "Intel"},
        {"AMD Ryzen 7 5800X 8-Core Processor", "AMD Ryzen 7 5800X"},
        {"", "Apple Silicon"},
    };
    for (const auto& [brand, name] : names)
        EXPECT_EQ(MacInfo::chipName(brand), name);
}

TEST_F(ProbeTest, TheMachineLineComesLaterAndHasAFallbackForEachHalf) {
    kernel.brand = "AMD Ryzen 7 5800X 8-Core Processor";
    std::string told;
    const Handle loading =
        MacInfo::load(desktop.loop, kernel, [&](const std::string& text) { told = text; });
    EXPECT_EQ(told, "");
    desktop.loop.settle();
    EXPECT_EQ(told, "Mac · AMD Ryzen 7 5800X");
}

} // namespace
} // namespace velmorquit
