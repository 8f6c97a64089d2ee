#include "Services/StartSwitches.h"

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

TEST(StartSwitches, AreAnsweredWhereverTheyStandAndNothingElseIs) {
    EXPECT_TRUE(StartSwitches::answer({"velmorquit", "-x", "--help"})->starts_with("Uso: "));
    EXPECT_TRUE(StartSwitches::answer({"velmorquit", "--version"})->starts_with("velmorquit "));
    for (const char* word : {"help", "--help=all", "--start-entry"})
        EXPECT_EQ(StartSwitches::answer({"--version", word}), std::nullopt) << word;
    EXPECT_EQ(StartSwitches::unknownLine({"--foo", "a\nb\x1b"}),
              "Velmor Quit: argomenti sconosciuti, li ignoro: --foo a?b? (velmorquit --help)");
}

} // namespace
} // namespace velmorquit
