#include "Codecs/PreferencesFile.h"
#include "Language/InstalledLanguage.h"
#include "Linux/Applications/DesktopEntryStart.h"
#include "Linux/Autostart/AutostartEntry.h"
#include "Linux/Log/JournalLog.h"
#include "Linux/Program/OwnProcess.h"
#include "Program.h"
#include "Services/LaunchAtLogin.h"
#include "Services/StartSwitches.h"

#include <cstdlib>
#include <iostream>
#include <string>
#include <string_view>

using namespace velmorquit;

int main(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == startEntrySwitch)
        return startDesktopEntry(argv[2]) ? EXIT_SUCCESS : EXIT_FAILURE;
    JournalLog log;
    const InstalledLanguage language(forcedLanguage(
        storedPreference(defaultPreferencesFile(), std::string(languagePreference))));
    AutostartEntry loginItem(AutostartEntry::Folders::fromEnvironment(), ownExecutable());
    auto answer = LaunchAtLogin::runSwitches({argv, argv + argc}, loginItem, log);
    if (!answer)
        answer = StartSwitches::answer({argv, argv + argc});
    if (!answer)
        return runProgram(argc, argv, log, language.formats());
    std::cout << *answer << '\n';
    return EXIT_SUCCESS;
}
