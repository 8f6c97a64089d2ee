#include "Remote/Verbs.h"

#include <gtest/gtest.h>

namespace velmorquit::remote {
namespace {

TEST(Verbs, SaysOfEachCommandWhatItComesTo) {
    struct Case {
        RemoteCommand command;
        bool isKnown = true;
        bool isAskedAbout = false;
        bool isAlwaysTaken = false;
    };
    for (const Case& one : std::vector<Case>{
             {.command = {"status", {}}},
             {.command = {"show", {"token"}}},
             {.command = {"cancel", {}}, .isAlwaysTaken = true},
             {.command = {"leave", {}}, .isAlwaysTaken = true},
             {.command = {"postpone", {"5"}}, .isAlwaysTaken = true},
             {.command = {"backup", {"skip"}}, .isAskedAbout = true},
             {.command = {"backup", {"cancel"}}, .isAskedAbout = true, .isAlwaysTaken = true},
             {.command = {"backup", {"stop"}}, .isAskedAbout = true, .isAlwaysTaken = true},
             {.command = {"backup", {"dance"}}, .isKnown = false},
             {.command = {"quitAll", {"dance"}}, .isAskedAbout = true},
             {.command = {"quit", {"A", "B"}}, .isAskedAbout = true},
             {.command = {"action", {"memory"}}},
             {.command = {"action", {"cancel-schedule"}}},
             {.command = {"action", {"quit-all", "memory"}}, .isAskedAbout = true},
             {.command = {"action", {"dance", "memory"}}, .isKnown = false},
             {.command = {"schedule", {"minutes", "5", "none"}}, .isAskedAbout = true},
             {.command = {"eject", {}}, .isAskedAbout = true},
             {.command = {"forget", {}}, .isAskedAbout = true},
             {.command = {"exclude", {"Note"}}, .isAskedAbout = true},
             {.command = {"include", {"Note"}}, .isAskedAbout = true},
             {.command = {"action", {"schedule-quit", "then=nothing"}}, .isAskedAbout = true},
             {.command = {"memory", {}}},
             {.command = {"actions", {}}},
             {.command = {"cancel", {"now"}}, .isKnown = false},
             {.command = {"quit", {}}, .isKnown = false},
             {.command = {"watch", {}}, .isKnown = false},
             {.command = {"", {}}, .isKnown = false},
         }) {
        const Meaning* const meaning = meaningOf(one.command);
        EXPECT_EQ(meaning != nullptr, one.isKnown) << one.command.verb;
        EXPECT_EQ(meaning && meaning->request, one.isAskedAbout) << one.command.verb;
        EXPECT_EQ(meaning && meaning->isAlwaysTaken, one.isAlwaysTaken) << one.command.verb;
    }
    for (const Command& command : commands())
        EXPECT_EQ(&commandOf(command.verb), &command) << "there is one of each";
}

TEST(Verbs, AreKnownByAsMuchAsIsClear) {
    const auto meant = [](std::string_view word) {
        std::string names;
        for (const Command* command : controlCommands(word))
            names += std::string(command->control) + ' ';
        return names;
    };
    EXPECT_EQ(meant("stat"), "status ");
    EXPECT_EQ(meant("quit"), "quit ") << "and not quit-all, which begins like that";
    EXPECT_EQ(meant("QUIT-"), "quit-all ");
    EXPECT_EQ(meant("fo"), "force forget ");
    EXPECT_EQ(meant("--help"), "help ");
    for (const char* word : {"", "-", "--ver", "statuses"})
        EXPECT_EQ(meant(word), "") << word;
}

} // namespace
} // namespace velmorquit::remote
