#include "Fuzz/Fuzz.h"
#include "Language/LocaleFormats.h"
#include "Services/Panel/CardTexts.h"
#include "Services/TimeMachine.h"

namespace velmorquit::fuzz {
namespace {

/// A tool that answers everything in the same way, on its output and in its file.
class Tool final : public ChildProcesses, public Files, public ChildProcess {
public:
    explicit Tool(std::string said) : said_(std::move(said)) {}

    [[nodiscard]] Result run(const std::string&, const std::vector<std::string>&) override {
        return {.status = 0, .output = said_};
    }
    [[nodiscard]] std::variant<std::shared_ptr<ChildProcess>, std::string>
    launch(const std::string&, const std::vector<std::string>&) override {
        return said_;
    }
    [[nodiscard]] bool exists(const std::string&) const override { return true; }
    [[nodiscard]] std::optional<std::string> read(const std::string&) const override {
        return said_;
    }
    [[nodiscard]] bool isRunning() const override { return false; }
    [[nodiscard]] int status() const override { return 0; }
    [[nodiscard]] std::string errorOutput() const override { return said_; }

private:
    std::string said_;
};

} // namespace

void examine(std::string_view bytes) {
    static const LocaleFormats formats(Language::italian, QLocale(QLocale::Italian));
    static const WallTime now{std::chrono::sys_days{std::chrono::year{2026} / 3 / 2}};
    const std::string said(bytes);
    Tool tool(said);
    const BackupTool names{.program = "tool", .destinations = "file"};
    const auto status = TimeMachine::status(tool, names);
    require(!status.fraction || (*status.fraction >= 0 && *status.fraction <= 1),
            "the progress is a fraction");
    const auto info = TimeMachine::info(tool, names);
    require(info.isConfigured || !info.lastBackup, "no backup without a place for it");
    require(isUtf8(CardTexts::lastBackup(info, formats, now).text),
            "what the panel says is a text");
    static_cast<void>(TimeMachine::latestBackupDate(tool, names));
    if (const auto message = TimeMachine::errorMessage(tool)) {
        require(!message->empty() && message->find('\n') == std::string::npos,
                "a message is one line");
        require(message->size() <= bytes.size(), "a message is a part of what was said");
    }
}

} // namespace velmorquit::fuzz
