#include "Linux/Program/SingleInstance.h"

#include "Linux/Remote/BusCommands.h"
#include "Texts/Localized.h"

#include <chrono>
#include <cstdlib>

namespace velmorquit {

namespace {

/// Another program has the name. The icon does the main job all the same.
Start goOnWithoutName(BusCommands& commands, SystemLog& log, const BusCommands::Holder& holder) {
    const std::string name = holder.name.empty() ? "?" : holder.name;
    log.write("Velmor Quit: il mio nome sul bus (org.velmorquit.VelmorQuit) è di " + name +
              " (processo " + std::to_string(holder.process) +
              "), che non è Velmor Quit: finché lo tiene, velmorctl non può raggiungermi");
    commands.claimLater();
    return {.note = localized("Un altro programma, %@ (processo %lld), ha preso il nome di Velmor "
                              "Quit: velmorctl e le scorciatoie non funzionano finché lo tiene.",
                              name, holder.process)};
}

} // namespace

Start takeOverOrHandOver(BusCommands& commands, SystemLog& log, const QVariantMap& platformData) {
    // The process with the name may be about to end: the second attempt then gets it.
    for (const std::chrono::milliseconds patience : {3000ms, 500ms}) {
        switch (commands.claimName()) {
        case BusCommands::Claim::ours:
            return {};
        case BusCommands::Claim::noBus:
            log.write("Velmor Quit: nessun bus di sessione, velmorctl non potrà raggiungermi");
            return {};
        case BusCommands::Claim::taken:
            break;
        }
        const BusCommands::Holder holder = commands.holder();
        // An owner without a process has just gone.
        if (!holder.isThisProgram && holder.process > 0)
            return goOnWithoutName(commands, log, holder);
        if (commands.showOther(platformData, patience)) {
            log.write("Velmor Quit: è già in esecuzione");
            return {.status = EXIT_SUCCESS};
        }
    }
    log.write("Velmor Quit: è già in esecuzione, ma non risponde");
    return {.status = EXIT_FAILURE};
}

} // namespace velmorquit
