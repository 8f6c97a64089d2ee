#include "Tool.h"

#include "Backup.h"
#include "Codecs/PreferencesFile.h"
#include "CommandLine.h"
#include "Language/InstalledLanguage.h"
#include "Reports.h"
#include "Restic.h"
#include "Restore.h"
#include "Say.h"
#include "Setup.h"
#include "Texts/Shown.h"
#include "Usage.h"

#include <QCoreApplication>

#include <csignal>
#include <iostream>

namespace velmorquit::tmutil {

namespace {

using Command = CommandLine::Command;

/// Carries out the commands that only need the tool's own files.
ExitStatus performAlone(const CommandLine& line, const Formats& formats) {
    switch (line.command) {
    case Command::destinations:
        return printDestinations();
    case Command::remove:
        return removeDestination(line);
    case Command::status:
        return printStatus(formats);
    case Command::latestBackup:
        return printLatestBackup();
    case Command::stopBackup:
        return stopBackup();
    default:
        std::cout << (line.names.empty() ? usage() : usage(line.names.front()));
        return ExitStatus::success;
    }
}

bool needsRestic(Command command) {
    switch (command) {
    case Command::setup:
    case Command::startBackup:
    case Command::list:
    case Command::restore:
    case Command::check:
        return true;
    default:
        return false;
    }
}

ExitStatus perform(const CommandLine& line, const Formats& formats) {
    if (!needsRestic(line.command))
        return performAlone(line, formats);
    Interruption interruption;
    Restic restic(Restic::installed(), interruption);
    if (!restic.isInstalled())
        return fail({localized("Per i backup serve il programma restic, che non è installato. Su "
                               "Debian e Ubuntu: sudo apt install restic")});
    switch (line.command) {
    case Command::setup:
        return setUp(line, restic);
    case Command::list:
        return listSnapshots(restic);
    case Command::restore:
        return restore(line, restic);
    case Command::check:
        return checkDestinations(line, restic);
    default:
        return line.isAwaited ? backUp(restic, formats) : backUpInBackground();
    }
}

} // namespace

int run(int argc, char** argv) {
    const auto parsed = parseCommandLine({argv + 1, argv + argc});
    const auto* line = std::get_if<CommandLine>(&parsed);
    // Called every second while a backup runs.
    if (line && line->command == Command::status && line->isPropertyList) {
        printStatusList();
        return static_cast<int>(ExitStatus::success);
    }
    // A backup outlives the terminal that started it.
    for (const int signal : {SIGHUP, SIGPIPE})
        std::signal(signal, SIG_IGN);
    const QCoreApplication application(argc, argv);
    const InstalledLanguage language(forcedLanguage(
        storedPreference(defaultPreferencesFile(), std::string(languagePreference))));
    if (!line) {
        // Parsed again for the error message, now that the language is known.
        const auto again = parseCommandLine({argv + 1, argv + argc});
        std::cerr << "velmorquit-tmutil: " << shownText(problemOf(again)->sentence) << "\n\n"
                  << usage();
        return static_cast<int>(ExitStatus::usage);
    }
    return static_cast<int>(perform(*line, language.formats()));
}

} // namespace velmorquit::tmutil
