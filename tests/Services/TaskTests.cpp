#include "Loop/Task.h"
#include "Simulated/VirtualLoop.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <utility>

namespace velmorquit {
namespace {

/// Says in the log when it is destroyed: what a coroutine holds must go with it, once.
struct Witness {
    explicit Witness(std::string& log) : log(log) {}
    ~Witness() { log += "gone "; }
    Witness(const Witness&) = delete;
    Witness& operator=(const Witness&) = delete;
    std::string& log;
};

class Owner {
public:
    Owner(MainLoop& loop, std::string& log) : loop_(loop), log_(log) {}
    [[nodiscard]] MainLoop& mainLoop() const { return loop_; }

    Task<> countTo(int last) {
        const Witness witness(log_);
        for (int number = 1; number <= last; ++number) {
            log_ += std::to_string(number) + ' ';
            co_await sleep(1s);
        }
        log_ += "end ";
    }

    Task<> act(std::function<void()> work) {
        const Witness witness(log_);
        co_await sleep(1s);
        work();
        witness.log += "stillHere ";
        co_await sleep(1s);
        witness.log += "never ";
    }

    Task<std::string> name(std::string text) {
        const Witness witness(log_);
        co_await sleep(1s);
        co_return text;
    }

    Task<> waitForNames() {
        const Witness witness(log_);
        Task<std::string> slow = name("slow");
        Task<std::string> earlier = name("earlier");
        log_ += co_await slow + ' ';
        log_ += co_await earlier + ' ';
    }

    /// What it calls may end it while another task waits for it.
    Task<int> tellThenCount(std::function<void()> tell) {
        const Witness witness(log_);
        tell();
        co_await unlessCancelled();
        log_ += "goesOn ";
        co_return 1;
    }

    Task<> waitForTelling(std::function<void()> tell) {
        const Witness witness(log_);
        Task<int> telling = tellThenCount(tell);
        co_await telling;
        log_ += "told ";
    }

    Task<> task;

private:
    MainLoop& loop_;
    std::string& log_;
};

class TaskTest : public testing::Test {
protected:
    /// What has been written after that time, since it was last called.
    std::string after(Duration time) {
        loop.advance(time);
        return std::exchange(log, {});
    }

    VirtualLoop loop;
    std::string log;
    std::unique_ptr<Owner> owner = std::make_unique<Owner>(loop, log);
};

TEST_F(TaskTest, BeginsInALaterTurnAndGoesOnAfterEachSleep) {
    owner->task = owner->countTo(2);
    EXPECT_EQ(log, "");
    EXPECT_EQ(after(0s), "1 ");
    EXPECT_TRUE(owner->task.isActive());
    EXPECT_EQ(after(2s), "2 end gone ");
    EXPECT_FALSE(owner->task.isActive());
}

TEST_F(TaskTest, EndsWhereItSleepsWhenItIsCancelledReplacedOrItsOwnerDies) {
    owner->task = owner->countTo(9);
    owner->task.cancel();
    EXPECT_EQ(after(10s), "") << "it never begins";
    owner->task = owner->countTo(9);
    loop.settle();
    owner->task.cancel();
    EXPECT_EQ(after(0s), "1 gone ");
    owner->task = owner->countTo(9);
    loop.settle();
    owner->task = owner->countTo(5);
    EXPECT_EQ(log, "1 gone ");
    loop.settle();
    owner.reset();
    EXPECT_EQ(after(10s), "1 gone 1 gone ");
}

TEST_F(TaskTest, GoesOnToItsNextSleepWhenItCancelsOrReplacesItselfOrEndsItsOwner) {
    const auto outcome = [this](std::function<void()> work) {
        owner->task = owner->act(std::move(work));
        return after(10s);
    };
    EXPECT_EQ(outcome([this] { owner->task.cancel(); }), "stillHere gone ");
    EXPECT_EQ(outcome([this] { owner->task = owner->countTo(1); }), "stillHere gone 1 end gone ");
    EXPECT_EQ(outcome([this] { owner.reset(); }), "stillHere gone ");
}

TEST_F(TaskTest, WaitsForWhatAnotherReturnsAlsoWhenThatHasEndedBefore) {
    owner->task = owner->waitForNames();
    EXPECT_EQ(after(1s), "gone gone slow earlier gone ");
    owner->task = owner->waitForNames();
    loop.settle();
    owner.reset();
    EXPECT_EQ(after(5s), "gone gone gone ") << "those it waits for end with it";
}

TEST_F(TaskTest, EndsWithWhatWaitsForItUnlessNobodyCancelsIt) {
    owner->task = owner->waitForTelling([] {});
    EXPECT_EQ(after(0s), "goesOn gone told gone ");
    owner->task = owner->waitForTelling([this] { owner.reset(); });
    EXPECT_EQ(after(0s), "gone gone ") << "nothing of the owner is touched any more";
}

} // namespace
} // namespace velmorquit
