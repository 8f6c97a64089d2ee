#include "Codecs/PreferencesFile.h"
#include "CommandLine.h"
#include "ForegroundJob.h"
#include "Language/InstalledLanguage.h"
#include "Session.h"
#include "Terminal.h"
#include "Texts/Version.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <array>
#include <csignal>
#include <iostream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

using namespace velmorquit;

namespace {

/// Whether the command goes on until something happens.
bool isWaiting(std::string_view word) {
    constexpr std::array waiting{remote::Verb::quitAll, remote::Verb::watch, remote::Verb::eject};
    const auto meant = remote::controlCommands(word);
    return meant.size() == 1 && std::ranges::count(waiting, meant.front()->verb) > 0;
}

} // namespace

int main(int argc, char** argv) {
    // A run may close the very terminal that waits for its end.
    for (const int signal : {SIGHUP, SIGPIPE})
        std::signal(signal, SIG_IGN);
    ForegroundJob job = argc > 1 && isWaiting(argv[1]) ? ForegroundJob::begin() : ForegroundJob();
    const QCoreApplication application(argc, argv);
    const InstalledLanguage language(forcedLanguage(
        storedPreference(defaultPreferencesFile(), std::string(languagePreference))));
    std::vector<std::string> arguments;
    for (const QString& argument : QCoreApplication::arguments().mid(1))
        arguments.push_back(argument.toStdString());
    const auto read = parseCommandLine(arguments);
    if (const auto* wrong = std::get_if<std::string>(&read)) {
        Terminal::complain(*wrong);
        std::cerr << '\n' << usage();
        return static_cast<int>(ExitStatus::usage);
    }
    const CommandLine& line = std::get<CommandLine>(read);
    if (line.command->verb == remote::Verb::help) {
        std::cout << usage();
        return static_cast<int>(ExitStatus::success);
    }
    if (line.command->verb == remote::Verb::version) {
        std::cout << versionLine("velmorctl") << '\n';
        return static_cast<int>(ExitStatus::success);
    }
    Session session(line, language.formats(), std::move(job));
    QTimer::singleShot(0, [&session] { session.start(); });
    return QCoreApplication::exec();
}
