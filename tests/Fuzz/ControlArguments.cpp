#include "CommandLine.h"
#include "Fuzz/Fuzz.h"
#include "Services/StartSwitches.h"

using namespace velmorquit;

/// The words behind velmorctl, and behind the application itself, a line each.
int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string text(reinterpret_cast<const char*>(data), size);
    const std::vector<std::string> words = fuzz::split(text, '\n');
    QStringList arguments;
    for (const std::string& word : words)
        arguments << QString::fromLocal8Bit(QByteArray::fromStdString(word));
    const auto line = parseCommandLine(arguments);
    if (const auto* wrong = std::get_if<std::string>(&line))
        fuzz::require(!wrong->empty() && fuzz::isUtf8(*wrong), "what is wrong is said");
    else if (const auto timeout = std::get<CommandLine>(line).timeout)
        fuzz::require(timeout->count() > 0 && timeout->count() <= INT32_MAX,
                      "a timer can wait for so long");
    static_cast<void>(StartSwitches::answer(words));
    const std::string unknown = StartSwitches::unknownLine(words);
    fuzz::require(unknown.find('\n') == std::string::npos, "the log gets one line");
    fuzz::require(unknown.size() <= size + words.size() + 100, "no longer than what was given");
    return 0;
}
