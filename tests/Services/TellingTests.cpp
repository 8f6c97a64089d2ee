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

} // namespace
} // namespace velmorquit
