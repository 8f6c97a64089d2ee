#include "Loop/Published.h"
#include "Simulated/VirtualLoop.h"

#include <gtest/gtest.h>

#include <memory>
#include <type_traits>
#include <vector>

namespace velmorquit {
namespace {

struct Owner {
    Published<int, Owner> field;
};
static_assert(!std::is_assignable_v<decltype(Owner::field)&, int>, "only its owner may write it");

class PublishedTest : public testing::Test {
protected:
    auto record() {
        return [this] { seen.push_back(field->get()); };
    }

    VirtualLoop loop;
    std::unique_ptr<Published<int>> field = std::make_unique<Published<int>>(loop, 1);
    std::vector<int> seen;
};

TEST_F(PublishedTest, TellsTheFirstValueAndThenEachTurnsLastOneLater) {
    const Handle subscription = field->subscribe(record());
    EXPECT_TRUE(seen.empty());
    loop.settle();
    *field = 2;
    *field = 3;
    EXPECT_EQ(seen, std::vector{1});
    loop.settle();
    EXPECT_EQ(seen, (std::vector{1, 3}));
}

TEST_F(PublishedTest, TellsNobodyOfAnEqualValueButStoresIt) {
    struct Person {
        int id;
        int age;
        bool operator==(const Person& other) const { return id == other.id; }
    };
    Published<Person> person(loop, {1, 20});
    int told = 0;
    const Handle subscription = person.subscribe([&] { ++told; });
    loop.settle();
    person = {1, 21};
    loop.settle();
    EXPECT_EQ(told, 1);
    EXPECT_EQ(person->age, 21);
}

TEST_F(PublishedTest, IsSilentToThoseWhoLeftAlsoWhileTelling) {
    Handle second;
    const Handle first = field->subscribe([&] { second.reset(); });
    second = field->subscribe(record());
    Handle third;
    third = field->subscribe([&] {
        seen.push_back(-field->get());
        third.reset();
    });
    loop.settle();
    *field = 2;
    loop.settle();
    EXPECT_EQ(seen, std::vector{-1});
}

TEST_F(PublishedTest, MayBeAssignedByASubscriberAndMayDieWhileATellingIsOnItsWay) {
    const Handle climbing = field->subscribe([this] {
        seen.push_back(*field);
        if (*field < 3)
            *field = *field + 1;
    });
    loop.settle();
    EXPECT_EQ(seen, (std::vector{1, 2, 3}));
    *field = 4;
    field.reset();
    loop.settle();
    EXPECT_EQ(seen.size(), 3U);
}

} // namespace
} // namespace velmorquit
