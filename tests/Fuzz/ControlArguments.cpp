#include "Fuzz/Fuzz.h"
#include "Services/StartSwitches.h"
#include "Tools/velmorctl/CommandLine.h"

#include <QString>

using namespace velmorquit;

/// The words behind velmorctl, and behind the application itself, a line each.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::vector<std::string> words = fuzz::split(text, '\n');
    std::vector<std::string> arguments;
    for (const std::string& word : words)
        arguments.push_back(QString::fromLocal8Bit(QByteArray::fromStdString(word)).toStdString());
    const auto read = parseCommandLine(arguments);
    if (const auto* wrong = std::get_if<std::string>(&read)) {
        fuzz::require(!wrong->empty() && fuzz::isUtf8(*wrong), "what is wrong is said");
    } else {
        const CommandLine& line = std::get<CommandLine>(read);
        fuzz::require(!line.timeout ||
                          (line.timeout->count() > 0 && line.timeout->count() <= INT32_MAX),
                      "a timer can wait for so long");
        fuzz::require(line.arguments.size() <= line.command->most ||
                          line.command->words == remote::Words::names ||
                          line.command->words == remote::Words::all,
                      "the program takes so many arguments");
    }
    static_cast<void>(StartSwitches::answer(words));
    const std::string unknown = StartSwitches::unknownLine(words);
    fuzz::require(unknown.find('\n') == std::string::npos, "the log gets one line");
    fuzz::require(unknown.size() <= size + words.size() + 100, "no longer than what was given");
    return 0;
}
