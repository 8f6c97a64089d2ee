#include "Services/Panel/CardTexts.h"
#include "Services/Panel/PanelTexts.h"
#include "Simulated/SimulatedFormats.h"

#include <gtest/gtest.h>

#include <limits>

namespace velmorquit {
namespace {

TEST(CardTexts, WhatIsLeftIsRoundedUp) {
    using Case = std::pair<Duration, const char*>;
    for (const auto& [left, text] : {Case{-5s, "tra 0 s"},
                                     {200ms, "tra 1 s"},
                                     {59s, "tra 59 s"},
                                     {60s, "tra 1 min"},
                                     {61s, "tra 2 min"},
                                     {3540s, "tra 59 min"},
                                     {3541s, "tra 1 h"},
                                     {3600s, "tra 1 h"},
                                     {3601s, "tra 1 h 1 min"},
                                     {7200s, "tra 2 h"},
                                     {86340s, "tra 23 h 59 min"}})
        EXPECT_EQ(CardTexts::remaining(left), text);
}

TEST(CardTexts, ABackupOfExactlySevenDaysIsNotStale) {
    const SimulatedFormats formats;
    const WallTime now(1000h);
    using Case = std::pair<std::optional<WallTime>, bool>;
    for (const auto& [last, isStale] : {Case{now - 604800s, false},
                                        {now - 604801s, true},
                                        {WallTime::min(), true},
                                        {std::nullopt, true}})
        EXPECT_EQ(CardTexts::lastBackup({true, last}, formats, now).isStale, isStale);
}

TEST(CardTexts, ProgressIsAPercentageOrNone) {
    EXPECT_EQ(CardTexts::percentage(0.995), "100 %");
    EXPECT_EQ(CardTexts::percentage(0.004), "0 %");
    EXPECT_EQ(CardTexts::percentage(0.125), "13 %");
    EXPECT_FALSE(CardTexts::shownFraction(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(CardTexts::shownFraction(std::numeric_limits<double>::infinity()));
    EXPECT_EQ(CardTexts::shownFraction(1.5), 1);
}

TEST(CardTexts, OneIsNamedAndMoreAreCounted) {
    EXPECT_EQ(CardTexts::preset(15), "15 min");
    EXPECT_EQ(CardTexts::preset(60), "1 ora");
    EXPECT_EQ(CardTexts::preset(120), "2 ore");
    EXPECT_EQ(CardTexts::ejectHelp({{"Chiavetta", "/media/chiavetta"}}),
              "Dopo aver chiuso le app espelle «Chiavetta»");
    EXPECT_EQ(CardTexts::ejectHelp({{"A", "/a"}, {"B", "/b"}}),
              "Dopo aver chiuso le app espelle i 2 dischi esterni");
    EXPECT_EQ(CardTexts::reopenTitle(1), "L'app di prima");
    EXPECT_EQ(CardTexts::continueTitle(PowerAction::logOut), "Esci utente lo stesso");
}

} // namespace
} // namespace velmorquit
