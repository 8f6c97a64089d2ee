#include "Loop/Told.h"

#include <gtest/gtest.h>

#include <string>

namespace velmorquit {
namespace {

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

TEST_F(ToldTest, AListenerMayEndItsOwnHearingAndThatOfOthers) {
    Handle own;
    Handle other;
    own = hear("a", [&] {
        own.reset();
        other.reset();
    });
    other = hear("b");
    const Handle last = hear("c");
    EXPECT_EQ(tell(1), "a1 c1 ");
    EXPECT_EQ(tell(2), "c2 ");
}

TEST_F(ToldTest, OneWhoBeginsToHearMeanwhileIsToldFromTheNextTimeOn) {
    Handle later;
    const Handle first = hear("a", [&] {
        if (!later.isSet())
            later = hear("b");
    });
    EXPECT_EQ(tell(1), "a1 ");
    EXPECT_EQ(tell(2), "a2 b2 ");
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
