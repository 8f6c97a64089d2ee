#include "Services/LaunchAtLogin.h"
#include "Simulated/SimulatedPorts.h"

#include <gtest/gtest.h>

namespace velmorquit {
namespace {

class LaunchAtLoginTest : public testing::Test {
protected:
    auto run(const std::vector<std::string>& arguments) {
        return LaunchAtLogin::runSwitches(arguments, item, log);
    }

    SimulatedLoginItem item;
    SimulatedSystemLog log;
};

TEST_F(LaunchAtLoginTest, TheFirstSwitchOfTheTableWinsWhateverTheOrder) {
    EXPECT_EQ(run({"velmorquit", "--disable-launch-at-login", "--enable-launch-at-login"}),
              "Avvio automatico: attivo");
    EXPECT_EQ(run({"velmorquit", "x", "--disable-launch-at-login"}), "Avvio automatico: disattivo");
    EXPECT_EQ(run({"velmorquit", "--enable-launch-at-login=1", "--verbose"}), std::nullopt);
    EXPECT_TRUE(log.lines.empty());
}

TEST_F(LaunchAtLoginTest, AFailureIsInTheLogAndTheLineShowsWhatIsSo) {
    item.failure = "disco pieno";
    EXPECT_EQ(run({"--enable-launch-at-login"}), "Avvio automatico: disattivo");
    EXPECT_EQ(log.lines, std::vector<std::string>{
                             "Velmor Quit: avvio automatico non modificato: disco pieno"});
    item.failure.reset();
    item.state = LoginItemStatus::unknown;
    EXPECT_EQ(LaunchAtLogin::describe(item.status()), "sconosciuto");
}

} // namespace
} // namespace velmorquit
