#include "Codecs/PreferencesFile.h"
#include "CommandLine.h"
#include "ForegroundJob.h"
#include "Language/InstalledLanguage.h"
#include "Session.h"
#include "Texts/Shown.h"
#include "Texts/Version.h"

#include <QCoreApplication>
#include <QTimer>

#include <algorithm>
#include <array>
#include <csignal>
#include <iostream>
#include <string_view>
#include <utility>

using namespace velmorquit;

namespace {

/// Whether it is one of the commands that go on until something happens.
bool isWaiting(std::string_view command) {
    constexpr std::array<std::string_view, 3> waiting{"quit-all", "watch", "eject"};
    return std::ranges::find(waiting, command) != waiting.end();
}

} // namespace

int main(int argc, char** argv) {
    // A run may close the very terminal in which its end is waited for.
    for (const int signal : {SIGHUP, SIGPIPE})
        std::signal(signal, SIG_IGN);
    ForegroundJob job = argc > 1 && isWaiting(argv[1]) ? ForegroundJob::begin() : ForegroundJob();
    const QCoreApplication application(argc, argv);
    const InstalledLanguage language(forcedLanguage(
        storedPreference(defaultPreferencesFile(), std::string(languagePreference))));
    const auto line = parseCommandLine(QCoreApplication::arguments().mid(1));
    if (const auto* wrong = std::get_if<std::string>(&line)) {
        std::cerr << "velmorctl: " << shownLines(*wrong) << "\n\n" << usage();
        return static_cast<int>(ExitStatus::usage);
    }
    if (std::get<CommandLine>(line).command == CommandLine::Command::help) {
        std::cout << usage();
        return static_cast<int>(ExitStatus::success);
    }
    if (std::get<CommandLine>(line).command == CommandLine::Command::version) {
        std::cout << versionLine("velmorctl") << '\n';
        return static_cast<int>(ExitStatus::success);
    }
    Session session(std::get<CommandLine>(line), language.formats(), std::move(job));
    QTimer::singleShot(0, &session, [&session] { session.start(); });
    return QCoreApplication::exec();
}
