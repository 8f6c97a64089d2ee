#include "Fuzz/Fuzz.h"
#include "Services/StartSwitches.h"
#include "Tools/velmorctl/CommandLine.h"

#include <QString>

/// The words behind velmorctl, and behind the application itself, a line each.
void velmorquit::fuzz::examine(std::string_view bytes) {
    const std::vector<std::string> words = split(bytes, '\n');
    std::vector<std::string> arguments;
    for (const std::string& word : words)
        arguments.push_back(QString::fromLocal8Bit(QByteArray::fromStdString(word)).toStdString());
    const auto read = parseCommandLine(arguments);
    if (const auto* wrong = std::get_if<std::string>(&read)) {
        require(!wrong->empty() && isUtf8(*wrong), "what is wrong is said");
    } else {
        const CommandLine& line = std::get<CommandLine>(read);
        require(!line.timeout || (line.timeout->count() > 0 && line.timeout->count() <= INT32_MAX),
                "a timer can wait for so long");
        require(line.arguments.size() <= line.command->most ||
                    line.command->words == remote::Words::names ||
                    line.command->words == remote::Words::all,
                "the program takes so many arguments");
    }
    static_cast<void>(StartSwitches::answer(words));
    const std::string unknown = StartSwitches::unknownLine(words);
    require(unknown.find('\n') == std::string::npos, "the log gets one line");
    require(unknown.size() <= bytes.size() + words.size() + 100, "no longer than what was given");
}
