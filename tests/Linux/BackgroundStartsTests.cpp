#include "Linux/Applications/BackgroundStarts.h"

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

constexpr std::uint64_t editor = 1;
constexpr std::uint64_t other = 2;
constexpr std::uint64_t started = 3;
constexpr ProcessId user = 10;
constexpr ProcessId app = 20;

class BackgroundStartsTest : public testing::Test {
protected:
    std::uint64_t focus(std::uint64_t window, ProcessId owner) {
        return starts.windowToRestore(window, owner, now);
    }

    BackgroundStarts starts;
    Uptime now{1h};
};

TEST_F(BackgroundStartsTest, TheKeyboardGoesBackToWhereItWasLast) {
    EXPECT_EQ(focus(started, app), 0U);
    starts.expect("/app", editor, now);
    EXPECT_EQ(focus(other, user), 0U);
    now = now + 20s;
    starts.expect("/second", 0, now);
    starts.noteAppearance("/app", app, now);
    EXPECT_EQ(focus(0, 0), 0U);
    EXPECT_EQ(focus(started, app), other);
    EXPECT_EQ(focus(other, user), 0U);
    now = now + (BackgroundStarts::settling - 1ns);
    EXPECT_EQ(focus(started, app), other);
    now = now + 1ns;
    EXPECT_EQ(focus(started, app), 0U) << "now it is the user";
}

TEST_F(BackgroundStartsTest, OneThatComesTooLateIsTheUsersOwn) {
    starts.expect("/app", editor, now);
    now = now + BackgroundStarts::patience;
    EXPECT_EQ(focus(editor, user), 0U);
    starts.noteAppearance("/app", app, now);
    EXPECT_EQ(focus(started, app), 0U);
}

} // namespace
} // namespace velmorquit
