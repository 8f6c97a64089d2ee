#include "Services/TimeMachine.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ctime>
#include <map>

namespace velmorquit {
namespace {

/// A tool that says what a test puts in its mouth.
class ScriptedTool final : public ChildProcesses, public Files {
public:
    [[nodiscard]] Result run(const std::string& program,
                             const std::vector<std::string>& arguments) override {
        asked += program;
        for (const std::string& argument : arguments)
            asked += ' ' + argument;
        asked += '\n';
        return result;
    }
    [[nodiscard]] std::variant<std::shared_ptr<ChildProcess>, std::string>
    launch(const std::string& program, const std::vector<std::string>& arguments) override {
        static_cast<void>(run(program, arguments));
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

class FinishedProcess final : public ChildProcess {
public:
    explicit FinishedProcess(std::string error) : error_(std::move(error)) {}
    [[nodiscard]] bool isRunning() const override { return false; }
    [[nodiscard]] int status() const override { return 1; }
    [[nodiscard]] std::string errorOutput() const override { return error_; }

private:
    std::string error_;
};

class TimeMachineTest : public testing::Test {
protected:
    TimeMachineTest() {
        ::setenv("TZ", "Europe/Rome", 1);
        ::tzset();
    }
    ~TimeMachineTest() override {
        ::unsetenv("TZ");
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
    std::optional<double> fractionOf(const std::string& percent) {
        return statusOf("<key>Percent</key>" + percent).fraction;
    }
    std::optional<std::int64_t> latest(const std::string& output) {
        script.result = {1, output};
        const auto date = TimeMachine::latestBackupDate(script, tool);
        if (!date)
            return std::nullopt;
        return std::chrono::duration_cast<std::chrono::seconds>(date->time_since_epoch()).count();
    }

    ScriptedTool script;
    BackupTool tool{.program = "/tool", .destinations = "/list"};
};

TEST_F(TimeMachineTest, TheNewestDateOfAllDestinationsCounts) {
    EXPECT_EQ(TimeMachine::info(script, tool), TimeMachine::Info());
    const std::string dated = "<dict><key>SnapshotDates</key><array>"
                              "<date>2026-01-02T03:04:05Z</date><date>2025-01-01T00:00:00Z</date>"
                              "</array></dict>";
    const auto both = infoOf("<key>Destinations</key><array><dict/>" + dated + "</array>");
    EXPECT_TRUE(both.isConfigured);
    EXPECT_EQ(both.lastBackup, WallTime(std::chrono::seconds(1767323045)));
    const auto odd = infoOf("<key>Destinations</key><array><dict><key>SnapshotDates</key><array>"
                            "<string>x</string></array></dict></array>");
    EXPECT_TRUE(odd.isConfigured);
    EXPECT_FALSE(odd.lastBackup);
    for (const char* none :
         {"", "<key>Destinations</key><array/>", "<key>Destinations</key><true/>",
          "<key>Destinations</key><array><string>x</string></array>"})
        EXPECT_EQ(infoOf(none), TimeMachine::Info()) << none;
    script.list = "no list";
    EXPECT_EQ(TimeMachine::info(script, tool), TimeMachine::Info());
}

TEST_F(TimeMachineTest, RunningIsATrueOrAOne) {
    EXPECT_TRUE(statusOf("<key>Running</key><true/>").running);
    EXPECT_TRUE(statusOf("<key>Running</key><integer>1</integer>").running);
    for (const char* no :
         {"<integer>2</integer>", "<false/>", "<string>1</string>", "<real>1</real>"})
        EXPECT_FALSE(statusOf(std::string("<key>Running</key>") + no).running) << no;
    script.result = {};
    EXPECT_EQ(TimeMachine::status(script, tool), TimeMachine::Status());
    EXPECT_EQ(script.asked.substr(0, 16), "/tool status -X\n");
}

TEST_F(TimeMachineTest, ProgressIsAFractionOrPerCentAsANumberOrAText) {
    const std::pair<const char*, double> good[] = {
        {"<real>0.42</real>", 0.42},     {"<integer>42</integer>", 0.42},
        {"<real>250</real>", 1.0},       {"<integer>1</integer>", 1.0},
        {"<string>0.37</string>", 0.37}, {"<string>1.5</string>", 0.015},
        {"<string>1e-1</string>", 0.1},  {"<integer>0</integer>", 0.0}};
    for (const auto& [text, fraction] : good)
        EXPECT_DOUBLE_EQ(fractionOf(text).value_or(-1), fraction) << text;
    for (const char* bad :
         {"<true/>", "<string></string>", "<string> 0.5</string>", "<string>0.5 </string>",
          "<string>0,5</string>", "<string>nan</string>", "<string>inf</string>",
          "<string>0x1p-1</string>", "<string>half</string>", "<real>-1</real>", "<array/>"})
        EXPECT_FALSE(fractionOf(bad)) << bad;
    const std::string inner = "<key>Progress</key><dict><key>Percent</key><real>0.5</real></dict>";
    EXPECT_EQ(statusOf("<key>Percent</key><true/>" + inner).fraction, 0.5);
    EXPECT_FALSE(statusOf("<key>Percent</key><integer>-1</integer>" + inner).fraction)
        << "a negative one doesn't fall back";
}

TEST_F(TimeMachineTest, TheFirstStampIsTheDateInLocalTime) {
    EXPECT_EQ(latest("/b/2026-03-02-091500/x/2027-01-01-000000\n"), 1772439300);
    EXPECT_EQ(latest("/b/2026-10-25-023000\n"), 1792888200) << "the first of two";
    EXPECT_FALSE(latest("/b/2026-02-30-101010 2026-03-01-101010")) << "the first decides";
    for (const char* none : {"", "No backups found", "2026-3-2-091500", "2026-03-02-09:15",
                             "2026-03-02-246060", "\xff 2026-03-02-091500"})
        EXPECT_FALSE(latest(none)) << none;
}

TEST_F(TimeMachineTest, TheLastLineWithAnythingInItIsTheMessage) {
    const auto message = [](const char* text) {
        return TimeMachine::errorMessage(FinishedProcess(text)).value_or("none");
    };
    EXPECT_EQ(message("one\n\t two  \n \n\n"), "two");
    EXPECT_EQ(message("one"), "one");
    EXPECT_EQ(message(" \n\t\n"), "none");
    EXPECT_EQ(message("\xff"), "none");
}

} // namespace
} // namespace velmorquit
