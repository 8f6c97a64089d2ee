#include "Services/TimeMachine.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <string>

namespace velmorquit {
namespace {

/// A tool that says what a test puts in its mouth.
class ScriptedTool final : public ChildProcesses, public Files {
public:
    [[nodiscard]] Result run(const std::string& program,
                             const std::vector<std::string>& arguments) override {
        asked = program;
        for (const std::string& argument : arguments)
            asked += ' ' + argument;
        return result;
    }
    [[nodiscard]] std::variant<std::shared_ptr<ChildProcess>, std::string>
    launch(const std::string&, const std::vector<std::string>&) override {
        return "not here";
    }
    [[nodiscard]] bool exists(const std::string& /*path*/) const override { return false; }
    [[nodiscard]] std::optional<std::string> read(const std::string& path) const override {
        return path == "/list" ? list : std::nullopt;
    }

    Result result;
    std::optional<std::string> list;
    std::string asked;
};

class TimeMachineTest : public testing::Test {
protected:
    TimeMachineTest() { moveTo("Europe/Rome"); }
    ~TimeMachineTest() override { moveTo("UTC"); }

    static void moveTo(const char* zone) {
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    static std::string plist(const std::string& entries) {
        return "<plist version=\"1.0\"><dict>" + entries + "</dict></plist>";
    }
    TimeMachine::Info infoOf(const std::string& entries) {
        script.list = plist(entries);
        return TimeMachine::info(script, tool);
    }
    TimeMachine::Status statusOf(const std::string& entries) {
        script.result = {0, plist(entries)};
        return TimeMachine::status(script, tool);
    }

    ScriptedTool script;
    BackupTool tool{.program = "/tool", .destinations = "/list"};
};

TEST_F(TimeMachineTest, TheNewestDateOfAllDestinationsCounts) {
    EXPECT_EQ(TimeMachine::info(script, tool), TimeMachine::Info());
    const std::string dated = "<dict><key>SnapshotDates</key><array>"
                              "<date>2026-01-02T03:04:05Z</date><date>2025-01-01T00:00:00Z</date>"
                              "</array></dict>";
    EXPECT_EQ(infoOf("<key>Destinations</key><array><dict/>" + dated + "</array>"),
              (TimeMachine::Info{true, WallTime(std::chrono::seconds(1767323045))}));
    EXPECT_EQ(infoOf("<key>Destinations</key><array><dict><key>SnapshotDates</key><array>"
                     "<string>x</string></array></dict></array>"),
              (TimeMachine::Info{true, std::nullopt}));
    for (const char* none :
         {"", "<key>Destinations</key><array/>", "<key>Destinations</key><true/>",
          "<key>Destinations</key><array><string>x</string></array>", "</dict>"})
        EXPECT_EQ(infoOf(none), TimeMachine::Info()) << none;
}

TEST_F(TimeMachineTest, RunningIsATrueOrAOne) {
    for (const auto& [value, isRunning] : {std::pair("<true/>", true),
                                           {"<integer>1</integer>", true},
                                           {"<integer>2</integer>", false},
                                           {"<false/>", false},
                                           {"<string>1</string>", false},
                                           {"<real>1</real>", false}})
        EXPECT_EQ(statusOf(std::string("<key>Running</key>") + value).running, isRunning) << value;
    script.result = {};
    EXPECT_EQ(TimeMachine::status(script, tool), TimeMachine::Status());
    EXPECT_EQ(script.asked, "/tool status -X");
}

TEST_F(TimeMachineTest, ProgressIsAFractionOrPerCentAsANumberOrAText) {
    const std::pair<const char*, double> cases[] = {
        {"<real>0.42</real>", 0.42},     {"<integer>42</integer>", 0.42},
        {"<integer>1</integer>", 1.0},   {"<string>1.5</string>", 0.015},
        {"<integer>0</integer>", 0.0},   {"<true/>", -1},
        {"<string></string>", -1},       {"<string> 0.5</string>", -1},
        {"<string>0,5</string>", -1},    {"<string>nan</string>", -1},
        {"<string>0x1p-1</string>", -1}, {"<real>-1</real>", -1}};
    for (const auto& [text, fraction] : cases)
        EXPECT_DOUBLE_EQ(statusOf(std::string("<key>Percent</key>") + text).fraction.value_or(-1),
                         fraction)
            << text;
    const std::string inner = "<key>Progress</key><dict><key>Percent</key><real>0.5</real></dict>";
    EXPECT_EQ(statusOf("<key>Percent</key><true/>" + inner).fraction, 0.5);
    EXPECT_FALSE(statusOf("<key>Percent</key><integer>-1</integer>" + inner).fraction)
        << "a negative one doesn't fall back";
}

TEST_F(TimeMachineTest, TheFirstStampIsTheDateInLocalTime) {
    // Of two times of that name the first, and the first stamp decides.
    for (const auto& [output, seconds] :
         {std::pair("/b/2026-03-02-091500/x/2027-01-01-000000\n", 1772439300),
          {"/b/2026-10-25-023000\n", 1792888200},
          {"/b/2026-02-30-101010 2026-03-01-101010", 0},
          {"", 0},
          {"2026-3-2-091500", 0},
          {"2026-03-02-246060", 0},
          {"\xff 2026-03-02-091500", 0}}) {
        script.result = {1, output};
        EXPECT_EQ(TimeMachine::latestBackupDate(script, tool).value_or(WallTime()),
                  WallTime(std::chrono::seconds(seconds)))
            << output;
    }
}

} // namespace
} // namespace velmorquit
