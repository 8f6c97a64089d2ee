#include "Simulated/SimulatedBackupTool.h"

#include <iomanip>
#include <sstream>

namespace velmorquit {

namespace {

std::string dictionary(const std::string& entries) {
    return R"(<?xml version="1.0" encoding="UTF-8"?><plist version="1.0"><dict>)" + entries +
           "</dict></plist>";
}

std::string dateText(WallTime date) {
    const auto day = std::chrono::floor<std::chrono::days>(date);
    const std::chrono::year_month_day figures(day);
    const std::chrono::hh_mm_ss time(std::chrono::floor<std::chrono::seconds>(date - day));
    std::ostringstream text;
    text << std::setfill('0') << static_cast<int>(figures.year()) << '-' << std::setw(2)
         << static_cast<unsigned>(figures.month()) << '-' << std::setw(2)
         << static_cast<unsigned>(figures.day()) << 'T' << std::setw(2) << time.hours().count()
         << ':' << std::setw(2) << time.minutes().count() << ':' << std::setw(2)
         << time.seconds().count() << 'Z';
    return text.str();
}

} // namespace

class SimulatedBackupTool::Backup final : public ChildProcess {
public:
    explicit Backup(const SimulatedBackupTool& tool) : tool_(tool) {}
    [[nodiscard]] bool isRunning() const override { return tool_.isRunning(); }
    [[nodiscard]] int status() const override { return tool_.exitStatus; }
    [[nodiscard]] std::string errorOutput() const override { return tool_.errorOutput; }

private:
    const SimulatedBackupTool& tool_;
};

Duration SimulatedBackupTool::sinceBeginning() const { return loop_.uptime() - beganAt_; }

bool SimulatedBackupTool::isRunning() const {
    return began_ && !isStopped_ && sinceBeginning() < duration;
}

ChildProcesses::Result SimulatedBackupTool::run(const std::string& /*program*/,
                                                const std::vector<std::string>& arguments) {
    if (arguments.front() == "stopbackup") {
        log_("stop backup");
        isStopped_ = true;
        if (onStop)
            onStop();
        return {0, ""};
    }
    if (arguments.front() == "status") {
        std::ostringstream entries;
        entries << "<key>Running</key><" << (isRunning() ? "true" : "false")
                << "/><key>Percent</key><real>" << progress(sinceBeginning()) << "</real>";
        return {0, dictionary(entries.str())};
    }
    return {1, "no backup yet\n"};
}

std::variant<std::shared_ptr<ChildProcess>, std::string>
SimulatedBackupTool::launch(const std::string& /*program*/,
                            const std::vector<std::string>& /*arguments*/) {
    if (launchError)
        return *launchError;
    log_("start backup");
    began_ = loop_.now();
    beganAt_ = loop_.uptime();
    isStopped_ = false;
    return std::make_shared<Backup>(*this);
}

std::optional<std::string> SimulatedBackupTool::destinations() const {
    if (!isConfigured_)
        return std::nullopt;
    std::string dates;
    if (earlierBackup)
        dates = "<date>" + dateText(*earlierBackup) + "</date>";
    const bool isRecorded = began_ && recordedAt && !isRunning() && !isStopped_ &&
                            sinceBeginning() >= duration + recordDelay;
    if (isRecorded)
        dates += "<date>" + dateText(*began_ + *recordedAt) + "</date>";
    return dictionary("<key>Destinations</key><array><dict><key>SnapshotDates</key><array>" +
                      dates + "</array></dict></array>");
}

} // namespace velmorquit
