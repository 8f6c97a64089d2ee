#include "X11/WorkspaceTest.h"

#include <map>

namespace velmorquit {
namespace {

using AskingTest = WorkspaceTest;

TEST_F(AskingTest, AnApplicationIsAskedAsItIsAtThatMoment) {
    installEntry("writer", "Name=Writer\n");
    const auto deaf = open({"--class", "Deaf", "--no-protocol"});
    EXPECT_FALSE(deaf->terminate(AskedBy::run));
    const auto question = open({"--class", "Question", "--type", "DIALOG"});
    EXPECT_TRUE(question->terminate(AskedBy::run)) << "a dialog of nobody is a program's own";
    const auto app = open({"--class", "Begin", "--ignore"});
    Child& child = children.back();
    const std::string window = std::to_string(windowOf(child));
    run({"xprop", "-id", window, "-f", "WM_CLASS", "8s", "-set", "WM_CLASS", "writer"});
    linger(150);
    EXPECT_EQ(find(child.id()), app);
    EXPECT_EQ(app->bundleIdentifier(), "writer");
    EXPECT_EQ(app->otherIdentities(), Words{"Begin"});
    run({"xprop", "-id", window, "-f", "_NET_WM_STATE", "32a", "-set", "_NET_WM_STATE",
         "_NET_WM_STATE_MODAL"});
    linger(150);
    EXPECT_FALSE(app->terminate(AskedBy::run)) << "a dialog keeps it from closing";
    linger(100);
    EXPECT_EQ(timesAsked(child), 0U);
    EXPECT_EQ(timesAsked(children.front()), 0U);
    EXPECT_FALSE(deaf->isTerminated()) << "the window manager was not made to kill it";
}

TEST_F(AskingTest, SaysWhyAnApplicationStays) {
    const std::map<std::string, StayReason> manners{
        {"--asks", StayReason::asking},          {"--asks-plainly", StayReason::asking},
        {"--stay", StayReason::windowless},      {"--no-protocol", StayReason::cannotBeAsked},
        {"--frozen", StayReason::notResponding}, {"--ignore", StayReason::unknown}};
    std::vector<App> apps;
    std::vector<StayReason> expected;
    for (const auto& [manner, reason] : manners) {
        apps.push_back(open({"--class", "C" + manner.substr(2), manner, "--pongs-as-qt"}));
        expected.push_back(reason);
    }
    for (const auto& app : apps)
        app->terminate(AskedBy::run);
    const auto reasons = [&] {
        std::vector<StayReason> found;
        for (const auto& app : apps)
            found.push_back(app->stayReason());
        return found;
    };
    EXPECT_TRUE(waitUntil([&] { return reasons() == expected; }))
        << testing::PrintToString(reasons());
    linger(3000);
    EXPECT_EQ(reasons(), expected) << "one that answers is not deaf a while later";
}

// Being asked twice, some dismiss their question, and others lose what they have asked about.
TEST_F(AskingTest, ARunAsksAgainOnlyWhatWasUsedSinceAndShowsNoQuestion) {
    const auto old = open({"--class", "Old", "--ignore"});
    Child& oldChild = children.back();
    const auto silent = open({"--ignore", "--ping"});
    Child& silentChild = children.back();
    const auto asking = open({"--class", "Asking", "--asks-plainly"});
    Child& askingChild = children.back();
    const auto modal = open({"--class", "Modal", "--windows", "2", "--modal"});
    for (const auto& app : {silent, asking})
        EXPECT_TRUE(app->terminate(AskedBy::run));
    EXPECT_EQ(modal->obstacle(), StayReason::asking);
    EXPECT_FALSE(modal->terminate(AskedBy::run));
    EXPECT_TRUE(waitUntil([&] { return timesAsked(silentChild) + timesAsked(askingChild) == 2; }));
    linger(300);
    for (const auto& app : {silent, asking})
        EXPECT_TRUE(app->terminate(AskedBy::run)) << "it was asked";
    EXPECT_FALSE(asking->terminate(AskedBy::user)) << "that would answer its question";
    linger(300);
    EXPECT_EQ(timesAsked(silentChild), 1U);
    EXPECT_EQ(timesAsked(askingChild), 1U);
    EXPECT_TRUE(silent->terminate(AskedBy::user));
    EXPECT_TRUE(waitUntil([&] { return timesAsked(silentChild) == 2; }));
    EXPECT_TRUE(old->terminate(AskedBy::run));
    linger(1100);
    old->activate();
    EXPECT_TRUE(waitUntil([&] { return old->lastUsed() && timesAsked(oldChild) == 1; }));
    linger(1100);
    EXPECT_TRUE(old->terminate(AskedBy::run));
    silent->activate();
    EXPECT_TRUE(waitUntil([&] {
        const auto used = silent->lastUsed();
        return used && loop.uptime() - *used < 100ms;
    }));
    silent->terminate(AskedBy::run);
    EXPECT_TRUE(waitUntil([&] { return timesAsked(silentChild) == 3; }));
    EXPECT_EQ(timesAsked(oldChild), 1U) << "nobody can know what that would mean to it";
}

} // namespace
} // namespace velmorquit
