#include "Codecs/PreferencesFile.h"
#include "CommandLine.h"
#include "Language/InstalledLanguage.h"
#include "Session.h"
#include "Texts/Version.h"

#include <QCoreApplication>
#include <QTimer>

#include <csignal>
#include <iostream>

using namespace velmorquit;

int main(int argc, char** argv) {
    // A run may close the very terminal in which its end is waited for.
    for (const int signal : {SIGHUP, SIGPIPE})
        std::signal(signal, SIG_IGN);
    const QCoreApplication application(argc, argv);
    const InstalledLanguage language(forcedLanguage(
        storedPreference(defaultPreferencesFile(), std::string(languagePreference))));
    const auto line = parseCommandLine(QCoreApplication::arguments().mid(1));
    if (const auto* wrong = std::get_if<std::string>(&line)) {
        std::cerr << "velmorctl: " << *wrong << "\n\n" << usage();
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
    Session session(std::get<CommandLine>(line), language.formats());
    QTimer::singleShot(0, &session, [&session] { session.start(); });
    return QCoreApplication::exec();
}
