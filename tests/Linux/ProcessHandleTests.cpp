#include "Linux/Applications/LinuxApplication.h"
#include "Linux/Applications/ProcessHandle.h"
#include "Linux/Loop/QtMainLoop.h"
#include "Simulated/SimulatedPorts.h"
#include "support/Child.h"
#include "support/Waiting.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <memory>

#include <sys/wait.h>
#include <unistd.h>

namespace velmorquit {
namespace {

TEST(ProcessHandleTest, TellsTheEndOfAProcessOnceAlsoBeforeItsParentTakesNote) {
    Child child({"sleep", "1000"});
    int told = 0;
    const auto handle = ProcessHandle::open(child.id(), [&] { ++told; });
    ASSERT_TRUE(handle && !handle->hasEnded());
    child.send(SIGKILL);
    EXPECT_TRUE(waitUntil([&] { return told > 0; }));
    EXPECT_TRUE(handle->hasEnded());
    linger(50);
    EXPECT_EQ(told, 1);
    EXPECT_EQ(handle->send(SIGTERM), ProcessHandle::Signalled::yes) << "it is gone: no refusal";
    EXPECT_FALSE(ProcessHandle::open(0, [] {}) || ProcessHandle::open(-5, [] {}));
}

TEST(ProcessHandleTest, NeverHitsALaterProcessWithTheSameId) {
    const std::vector<std::string> sleep{"sleep", "1000"};
    auto process = std::make_unique<Child>(sleep);
    const pid_t id = process->id();
    const auto handle = ProcessHandle::open(id, [] {});
    ASSERT_TRUE(handle);
    process.reset();
    // The kernel is told which id comes next. Another process of the machine may take it in
    // between: a few tries are enough.
    for (int tries = 0; tries < 50 && (!process || process->id() != id); ++tries) {
        std::ofstream last("/proc/sys/kernel/ns_last_pid");
        last << id - 1 << std::flush;
        if (!last)
            GTEST_SKIP() << "the kernel doesn't let this user choose process ids";
        process = std::make_unique<Child>(sleep);
    }
    if (process->id() != id)
        GTEST_SKIP() << "the id was not to be had again";
    EXPECT_TRUE(handle->hasEnded());
    handle->send(SIGKILL);
    linger(50);
    EXPECT_TRUE(process->isRunning());
    const auto anew = ProcessHandle::open(id, [] {});
    EXPECT_TRUE(anew && !anew->hasEnded());
}

class ForcingTest : public testing::Test {
protected:
    std::shared_ptr<LinuxApplication> application(const Child& child) {
        return std::make_shared<LinuxApplication>(ProcessHandle::open(child.id(), [] {}),
                                                  Identity{}, ProcessOrigin(), Image(),
                                                  LinuxApplication::Surroundings{loop, log, {}});
    }

    QtMainLoop loop;
    SimulatedSystemLog log;
};

TEST_F(ForcingTest, AsksByASignalFirstAndKillsTheDeafTwoSecondsLater) {
    Child willing({"sleep", "1000"});
    const auto one = application(willing);
    EXPECT_TRUE(one->forceTerminate());
    EXPECT_TRUE(waitUntil([&] { return one->isTerminated(); }));
    EXPECT_EQ(willing.status(), 128 + SIGTERM);
    EXPECT_FALSE(one->terminate(AskedBy::run))
        << "without a workspace there is nobody to ask politely";
    EXPECT_FALSE(one->activate());

    Child stubborn({"sh", "-c", "trap '' TERM; echo deaf; while :; do sleep 1; done"});
    ASSERT_TRUE(waitUntil([&] { return stubborn.output() == "deaf\n"; }));
    const auto two = application(stubborn);
    EXPECT_TRUE(two->forceTerminate());
    linger(1500);
    EXPECT_FALSE(two->isTerminated());
    EXPECT_TRUE(waitUntil([&] { return two->isTerminated(); }));
    EXPECT_EQ(stubborn.status(), 128 + SIGKILL);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(ForcingTest, IsRefusedForTheProcessOfAnotherUserAndSaysSo) {
    if (::getuid() != 0)
        GTEST_SKIP() << "needs two users";
    Child root({"sleep", "1000"});
    const auto app = application(root);
    constexpr uid_t nobody = 65534;
    ASSERT_EQ(::seteuid(nobody), 0);
    // What counts is the sender's real id too: a child has it.
    const pid_t child = ::fork();
    if (child == 0) {
        [[maybe_unused]] const int back = ::seteuid(0);
        if (::setuid(nobody) != 0)
            ::_exit(2);
        ::_exit(app->forceTerminate() ? 1 : log.lines.size() == 1 ? 0 : 3);
    }
    ASSERT_EQ(::seteuid(0), 0);
    int status = -1;
    ::waitpid(child, &status, 0);
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_FALSE(app->isTerminated());
}

} // namespace
} // namespace velmorquit
