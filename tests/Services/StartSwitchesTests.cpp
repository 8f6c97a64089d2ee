#include "Services/LaunchAtLogin.h"
#include "Services/StartSwitches.h"
#include "Simulated/SimulatedPorts.h"

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

TEST(StartSwitches, ChangeTheLaunchAtLoginTheFirstOfTheirTableAndSayWhatIsSo) {
    SimulatedLoginItem item;
    SimulatedSystemLog log;
    const auto run = [&](const std::vector<std::string>& arguments) {
        return LaunchAtLogin::runSwitches(arguments, item, log);
    };
    EXPECT_EQ(run({"velmorquit", "--disable-launch-at-login", "--enable-launch-at-login"}),
              "Avvio automatico: attivo");
    EXPECT_EQ(run({"velmorquit", "x", "--disable-launch-at-login"}), "Avvio automatico: disattivo");
    EXPECT_EQ(run({"velmorquit", "--enable-launch-at-login=1", "--verbose"}), std::nullopt);
    EXPECT_TRUE(log.lines.empty());
    item.failure = "disco pieno";
    EXPECT_EQ(run({"--enable-launch-at-login"}), "Avvio automatico: disattivo");
    EXPECT_EQ(log.lines, std::vector<std::string>{
                             "Velmor Quit: avvio automatico non modificato: disco pieno"});
    EXPECT_EQ(LaunchAtLogin::describe(LoginItemStatus::unknown), "sconosciuto");
}

} // namespace
} // namespace velmorquit
