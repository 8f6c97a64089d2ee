#include "CommandLine.h"

#include "Texts/Localized.h"

#include <algorithm>
#include <charconv>
#include <deque>
#include <functional>
#include <map>

namespace velmorquit::tmutil {

namespace {

using Command = CommandLine::Command;

struct Words {
    Command command;
    std::size_t fewest = 0; ///< of names
    std::size_t most = 0;
};

const std::map<std::string, Words>& commands() {
    static const std::map<std::string, Words> words{
        {"help", {Command::help, 0, 1}},
        {"--help", {Command::help, 0, 1}},
        {"-h", {Command::help, 0, 1}},
        {"setup", {Command::setup, 1, 1}},
        {"destinations", {Command::destinations}},
        {"remove", {Command::remove, 1, 1}},
        {"startbackup", {Command::startBackup}},
        {"status", {Command::status}},
        {"latestbackup", {Command::latestBackup}},
        {"stopbackup", {Command::stopBackup}},
        {"list", {Command::list}},
        {"restore", {Command::restore, 1, 2}},
        {"check", {Command::check}},
    };
    return words;
}

/// Takes the value of an option; false when the option doesn't accept it.
using Take = std::function<bool(CommandLine& line, const std::string& value)>;

Take number(std::int64_t KeepRules::* rule) {
    return [rule](CommandLine& line, const std::string& value) {
        std::int64_t count = 0;
        const char* end = value.data() + value.size();
        const auto [rest, error] = std::from_chars(value.data(), end, count);
        if (error != std::errc{} || rest != end || count < 1 || count > 100000)
            return false;
        if (!line.keep)
            line.keep.emplace();
        *line.keep.*rule = count;
        return true;
    };
}

Take text(std::string CommandLine::* field) {
    return [field](CommandLine& line, const std::string& value) {
        line.*field = value;
        return !value.empty();
    };
}

Take element(std::vector<std::string> CommandLine::* field) {
    return [field](CommandLine& line, const std::string& value) {
        (line.*field).push_back(value);
        return !value.empty();
    };
}

const std::map<std::string, std::pair<Command, Take>>& valueOptions() {
    static const std::map<std::string, std::pair<Command, Take>> options{
        {"--source", {Command::setup, element(&CommandLine::sources)}},
        {"--exclude", {Command::setup, element(&CommandLine::excludes)}},
        {"--keep-last", {Command::setup, number(&KeepRules::last)}},
        {"--keep-daily", {Command::setup, number(&KeepRules::daily)}},
        {"--keep-weekly", {Command::setup, number(&KeepRules::weekly)}},
        {"--keep-monthly", {Command::setup, number(&KeepRules::monthly)}},
        {"--password-file", {Command::setup, text(&CommandLine::passwordFile)}},
        {"--to", {Command::restore, text(&CommandLine::to)}},
    };
    return options;
}

const std::map<std::string, std::pair<Command, bool CommandLine::*>>& switches() {
    static const std::map<std::string, std::pair<Command, bool CommandLine::*>> options{
        {"--block", {Command::startBackup, &CommandLine::isAwaited}},
        {"-b", {Command::startBackup, &CommandLine::isAwaited}},
        {"-X", {Command::status, &CommandLine::isPropertyList}},
        {"--read-data", {Command::check, &CommandLine::readsData}},
    };
    return options;
}

/// Takes the option at the front of `rest`.
std::optional<Problem> takeOption(CommandLine& line, std::deque<std::string>& rest) {
    const std::string word = rest.front();
    rest.pop_front();
    const auto known = switches().find(word);
    if (known != switches().end() && known->second.first == line.command) {
        line.*known->second.second = true;
        return std::nullopt;
    }
    const auto equals = word.find('=');
    const std::string name = word.substr(0, equals);
    const auto option = valueOptions().find(name);
    if (option == valueOptions().end() || option->second.first != line.command)
        return Problem{localized("opzione sconosciuta: %@", word)};
    if (equals == word.npos && rest.empty())
        return Problem{localized("%@ vuole un valore", name)};
    std::string value;
    if (equals == word.npos) {
        value = rest.front();
        rest.pop_front();
    } else {
        value = word.substr(equals + 1);
    }
    if (!option->second.second(line, value))
        return Problem{localized("%@ non può valere «%@»", name, value)};
    return std::nullopt;
}

} // namespace

Outcome<CommandLine> parseCommandLine(std::vector<std::string> arguments) {
    std::deque<std::string> rest(arguments.begin(), arguments.end());
    if (rest.empty())
        return Problem{localized("manca il comando")};
    const std::string word = rest.front();
    rest.pop_front();
    const auto known = commands().find(word);
    if (known == commands().end())
        return Problem{localized("comando sconosciuto: %@", word)};
    CommandLine line{.command = known->second.command};
    bool areOptionsOver = false;
    while (!rest.empty()) {
        const std::string next = rest.front();
        if (next == "--" && !areOptionsOver) {
            areOptionsOver = true;
            rest.pop_front();
        } else if (next == "--help" || next == "-h") {
            return CommandLine{.command = Command::help, .names = {word}};
        } else if (next.starts_with('-') && !areOptionsOver) {
            if (const auto problem = takeOption(line, rest))
                return *problem;
        } else {
            line.names.push_back(next);
            rest.pop_front();
        }
    }
    if (line.names.size() < known->second.fewest)
        return Problem{localized("a %@ manca qualcosa", word)};
    if (line.names.size() > known->second.most)
        return Problem{localized("parola di troppo: %@", line.names[known->second.most])};
    if (line.command == Command::restore && line.to.empty())
        return Problem{localized("a restore manca --to CARTELLA")};
    return line;
}

} // namespace velmorquit::tmutil
