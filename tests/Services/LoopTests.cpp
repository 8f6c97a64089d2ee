#include "Loop/Published.h"
#include "Loop/Told.h"
#include "Simulated/VirtualLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <utility>

namespace velmorquit {
namespace {

struct Owner {
    Published<int, Owner> field;
};
static_assert(!std::is_assignable_v<decltype(Owner::field)&, int>, "only its owner may write it");

class PublishedTest : public testing::Test {
protected:
    auto record() {
        return [this] { seen += std::to_string(field->get()) + ' '; };
    }
    /// What has been seen since it was last called, a turn later.
    std::string later() {
        loop.settle();
        return std::exchange(seen, {});
    }

    VirtualLoop loop;
    std::unique_ptr<Published<int>> field = std::make_unique<Published<int>>(loop, 1);
    std::string seen;
};

TEST_F(PublishedTest, TellsTheFirstValueAndThenEachTurnsLastOneLater) {
    const Handle subscription = field->subscribe(record());
    EXPECT_EQ(seen, "");
    EXPECT_EQ(later(), "1 ");
    *field = 2;
    *field = 3;
    EXPECT_EQ(seen, "");
    EXPECT_EQ(later(), "3 ");
}

TEST_F(PublishedTest, TellsNobodyOfAnEqualValueButStoresIt) {
    struct Person {
        int id;
        int age;
        bool operator==(const Person& other) const { return id == other.id; }
    };
    Published<Person> person(loop, {1, 20});
    const Handle subscription = person.subscribe(record());
    EXPECT_EQ(later(), "1 ");
    person = {1, 21};
    EXPECT_EQ(later(), "");
    EXPECT_EQ(person->age, 21);
}

TEST_F(PublishedTest, IsSilentToThoseWhoLeftAlsoWhileTelling) {
    Handle second;
    const Handle first = field->subscribe([&] { second.reset(); });
    second = field->subscribe(record());
    Handle third;
    third = field->subscribe([&] {
        seen += "third ";
        third.reset();
    });
    EXPECT_EQ(later(), "third ");
    *field = 2;
    EXPECT_EQ(later(), "");
}

TEST_F(PublishedTest, MayBeAssignedByASubscriberAndMayDieWhileATellingIsOnItsWay) {
    const Handle climbing = field->subscribe([this] {
        record()();
        if (*field < 3)
            *field = *field + 1;
    });
    EXPECT_EQ(later(), "1 2 3 ");
    *field = 4;
    field.reset();
    EXPECT_EQ(later(), "");
}

class ToldTest : public testing::Test {
protected:
    /// Hears under `name`, then does `work`.
    Handle hear(std::string name, std::function<void()> work = [] {}) {
        return told->hear([this, name = std::move(name), work = std::move(work)](int number) {
            heard += name + std::to_string(number) + ' ';
            work();
        });
    }
    std::string tell(int number) {
        heard.clear();
        told->tell(number);
        return heard;
    }

    std::unique_ptr<Told<int>> told = std::make_unique<Told<int>>();
    std::string heard;
};

TEST_F(ToldTest, AListenerMayEndItsOwnHearingAndThatOfOthersAndLetOthersBegin) {
    Handle own;
    Handle other;
    Handle later;
    own = hear("a", [&] {
        own.reset();
        other.reset();
        later = hear("d");
    });
    other = hear("b");
    const Handle last = hear("c");
    EXPECT_EQ(tell(1), "a1 c1 ");
    EXPECT_EQ(tell(2), "c2 d2 ");
}

TEST_F(ToldTest, AListenerMayTellAgainAndMayDestroyWhoTells) {
    const Handle first = hear("a", [&] {
        if (heard.size() == 3)
            told->tell(2);
    });
    const Handle second = hear("b");
    EXPECT_EQ(tell(1), "a1 a2 b2 b1 ");
    const Handle end = hear("c", [&] { told.reset(); });
    EXPECT_EQ(tell(3), "a3 a2 b2 c2 b3 c3 ");
}

class TimerQueueTest : public testing::Test {
protected:
    auto note(std::string what) {
        return [this, what] {
            log += what + '@' + std::to_string(loop.uptime().sinceStart / 1ms) + ' ';
        };
    }
    /// What has been noted after that time.
    std::string after(Duration time) {
        loop.advance(time);
        return std::exchange(log, {});
    }

    VirtualLoop loop;
    std::string log;
};

TEST_F(TimerQueueTest, RunsTimersInTheOrderOfTheirInstantsThenOfTheirArming) {
    const Handle late = loop.after(2s, note("late"));
    const Handle every = loop.every(500ms, note("every"));
    const Handle first = loop.after(1s, note("first"));
    const Handle second = loop.after(1s, note("second"));
    EXPECT_EQ(after(1s), "every@500 every@1000 first@1000 second@1000 ");
}

TEST_F(TimerQueueTest, AHandleEndsItsTimerAlsoFromWithinAndAfterTheLoopHasGone) {
    Handle once = loop.after(1s, note("once"));
    once.reset();
    Handle repeating;
    repeating = loop.every(1s, [&] {
        note("repeating")();
        if (loop.uptime() == Uptime{3s})
            repeating.reset();
    });
    Handle moved = loop.after(1s, note("moved"));
    const Handle kept = std::move(moved);
    moved.reset();
    EXPECT_EQ(after(10s), "repeating@1000 moved@1000 repeating@2000 repeating@3000 ");
    EXPECT_FALSE(repeating.isSet());
    Handle orphan = std::make_unique<VirtualLoop>()->after(1s, note("never"));
    orphan.reset();
}

TEST_F(TimerQueueTest, ARepeatingTimerKeepsToItsMultiplesAndMayArmItsSuccessor) {
    Handle timer = loop.every(1s, [&] {
        note("old")();
        timer = loop.every(300ms, note("new"));
    });
    EXPECT_EQ(after(1700ms), "old@1000 new@1300 new@1600 ");
}

TEST_F(TimerQueueTest, ATimerThatWasHeldUpIsCalledOnceForAllItMissed) {
    TimerQueue queue;
    const Handle timer = queue.addRepeating(Uptime{}, 100ms, note("tick"));
    while (queue.fireNext(Uptime{1050ms})) {
    }
    EXPECT_EQ(log, "tick@0 ");
    EXPECT_EQ(queue.nextDue(), Uptime{1100ms});
}

} // namespace
} // namespace velmorquit
