#include "AppDelegate.h"
#include "Codecs/PreferencesFile.h"
#include "Language/InstalledLanguage.h"
#include "Linux/Applications/ApplicationLauncher.h"
#include "Linux/Applications/DesktopEntryStart.h"
#include "Linux/Applications/LinuxWindows.h"
#include "Linux/Applications/LinuxWorkspace.h"
#include "Linux/Autostart/AutostartEntry.h"
#include "Linux/DBus/BusCommands.h"
#include "Linux/DBus/BusNotice.h"
#include "Linux/DBus/BusQuit.h"
#include "Linux/DBus/KeepReading.h"
#include "Linux/DesktopAppearance.h"
#include "Linux/EndSignals.h"
#include "Linux/Files/LinuxFiles.h"
#include "Linux/JournalLog.h"
#include "Linux/Preferences/PropertyListPreferences.h"
#include "Linux/Proc/LinuxChildProcesses.h"
#include "Linux/Proc/ProcKernel.h"
#include "Linux/Proc/ProcProcesses.h"
#include "Linux/QtMainLoop.h"
#include "Linux/QtProgram.h"
#include "Linux/Session/BusEndService.h"
#include "Linux/Session/BusSessionRegistry.h"
#include "Linux/Session/BusSleepHolds.h"
#include "Linux/Session/DesktopInput.h"
#include "Linux/Session/DisplayServers.h"
#include "Linux/Session/PowerBus.h"
#include "Linux/Session/SessionTraits.h"
#include "Linux/Tray/TrayOwners.h"
#include "Linux/Volumes/UDisksVolumes.h"
#include "Linux/X11/DesktopTrayHosts.h"
#include "Linux/X11/X11Toplevels.h"
#include "Linux/X11/X11WindowSystem.h"
#include "Services/LaunchAtLogin.h"
#include "Services/SessionEnd/SessionEnd.h"
#include "Services/StartSwitches.h"
#include "Texts/Localized.h"
#include "Texts/Shown.h"

#include <QApplication>
#include <QSessionManager>
#include <QStandardPaths>
#include <QThreadPool>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <optional>
#include <set>
#include <string>
#include <string_view>

#include <malloc.h>
#include <sys/resource.h>

namespace velmorquit {
namespace {

/// The terminal that started the program may be one of those that are asked to quit. A handler,
/// unlike ignoring, is not inherited by the programs that are started from here.
void surviveTheTerminal() {
    struct sigaction nothing{};
    nothing.sa_handler = [](int) {};
    nothing.sa_flags = SA_RESTART;
    for (const int signal : {SIGHUP, SIGPIPE})
        ::sigaction(signal, &nothing, nullptr);
}

/// Large blocks go back to the system when they are freed. By itself the allocator keeps blocks of
/// the size of those that were freed before, up to 32 MB: one large message would be paid for ever.
void giveMemoryBack() {
    constexpr int large = 4 << 20;
    ::mallopt(M_MMAP_THRESHOLD, large);
    ::mallopt(M_TRIM_THRESHOLD, large);
}

/// Whether so few descriptors may be open that the last one can be in use at any moment. The answer
/// with which the X server hands one over is lost then, and Qt would wait for it for ever.
bool isShortOfDescriptors() {
    constexpr rlim_t usual = 1024;
    constexpr rlim_t few = 64;
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur >= usual)
        return false;
    limit.rlim_cur = std::min(limit.rlim_max, usual);
    return ::setrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur < few;
}

QtMessageHandler usualHandler = nullptr;

/// Empty where /proc can't be read.
std::filesystem::path ownExecutable() {
    std::error_code unreadable;
    return std::filesystem::read_symlink("/proc/self/exe", unreadable);
}

/// Qt ends the program on the spot when the display has gone, with a line of its own that says so.
/// Nothing is lost by that: preferences are in their file as soon as they are changed. What else Qt
/// says may name files and services that others have called what they like.
void hear(QtMsgType type, const QMessageLogContext& context, const QString& message) {
    const bool isDisplayGone = message.startsWith(QLatin1String("The X11 connection broke"));
    if (isDisplayGone)
        JournalLog().write("Velmor Quit: senza server X11 non posso continuare, termino");
    else if (usualHandler && (type == QtFatalMsg || JournalLog::isRoomForLine()))
        usualHandler(type, context, QString::fromStdString(shownText(message.toStdString())));
}

/// The autostart entry starts the program; a session that starts it as well would do it twice.
void neverRestart(const QApplication& application) {
    const auto answer = [](QSessionManager& session) {
        session.setRestartHint(QSessionManager::RestartNever);
    };
    for (const auto request :
         {&QGuiApplication::commitDataRequest, &QGuiApplication::saveStateRequest})
        QObject::connect(&application, request, &application, answer, Qt::DirectConnection);
}

/// How a start goes on.
struct Start {
    std::optional<int> status{};       ///< with which the program is to end
    std::optional<std::string> note{}; ///< what the user has to know otherwise
};

/// Somebody else has the name: the icon does the main job all the same.
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

/// Takes the program's name, or asks the process that has it to show itself.
Start handOver(BusCommands& commands, SystemLog& log, const QVariantMap& platformData) {
    // The process that has the name may be about to end: then the second attempt gets it.
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
        // Without a process it has just gone.
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

/// Work on other threads uses what is made before this: it is done when this goes. A disk that does
/// not let go may take minutes, and nobody waits for it any more: the program ends on the spot
/// then, as all that must outlive it is on disk already.
struct FinishedWork {
    FinishedWork() = default;
    FinishedWork(const FinishedWork&) = delete;
    FinishedWork& operator=(const FinishedWork&) = delete;
    ~FinishedWork() {
        constexpr int patience = 3000;
        if (!QThreadPool::globalInstance()->waitForDone(patience))
            std::_Exit(EXIT_SUCCESS);
    }
};

/// The one that was installed or built together with this program, else the one in PATH. A virtual
/// desktop may have one that stands in for it.
BackupTool backupTool() {
    if (qEnvironmentVariableIsSet("VELMOR_VIRTUAL_DESKTOP") &&
        qEnvironmentVariableIsSet("VELMOR_STAND_IN_BACKUP_TOOL"))
        return {.program = qEnvironmentVariable("VELMOR_STAND_IN_BACKUP_TOOL").toStdString(),
                .destinations =
                    qEnvironmentVariable("VELMOR_STAND_IN_BACKUP_DESTINATIONS").toStdString()};
    const QString name = QStringLiteral("velmorquit-tmutil");
    QString program = QStandardPaths::findExecutable(
        name, {QString::fromStdString(ownExecutable().parent_path().string())});
    if (program.isEmpty())
        program = QStandardPaths::findExecutable(name);
    if (program.isEmpty())
        return {};
    return {.program = program.toStdString(),
            .destinations = defaultBackupDestinationsFile().string()};
}

std::set<ProcessId> windowOwners(ToplevelSource& source) {
    std::set<ProcessId> owners;
    for (const Toplevel& toplevel : source.toplevels()) {
        if (toplevel.isOrdinary && toplevel.process > 0)
            owners.insert(toplevel.process);
    }
    return owners;
}

/// With it and the path of a desktop entry the program does nothing but start that entry.
constexpr const char* startEntrySwitch = "--start-entry";

int run(int argc, char** argv) {
    if (argc == 3 && std::string_view(argv[1]) == startEntrySwitch)
        return startDesktopEntry(argv[2]) ? EXIT_SUCCESS : EXIT_FAILURE;
    JournalLog log;
    const InstalledLanguage language(forcedLanguage(
        storedPreference(defaultPreferencesFile(), std::string(languagePreference))));
    AutostartEntry loginItem(AutostartEntry::Folders::fromEnvironment(), ownExecutable());
    if (const auto line = LaunchAtLogin::runSwitches({argv, argv + argc}, loginItem, log)) {
        std::cout << *line << '\n';
        return EXIT_SUCCESS;
    }
    if (const auto text = StartSwitches::answer({argv, argv + argc})) {
        std::cout << *text << '\n';
        return EXIT_SUCCESS;
    }
    surviveTheTerminal();
    giveMemoryBack();
    // Before Qt takes it for itself.
    const QVariantMap platformData = takePlatformData();
    // Qt would end the program with a crash when there is no server.
    auto connection = X11Connection::open();
    auto faceConnection = X11Connection::open();
    if (!connection || !faceConnection) {
        const char* display = std::getenv("DISPLAY");
        log.write(std::string("Velmor Quit: non trovo un desktop X11 ") +
                  (display ? std::string("(DISPLAY=") + display + " non risponde)"
                           : "(DISPLAY non è impostata)"));
        return EXIT_FAILURE;
    }

    const bool isPlatformChosen = std::getenv("QT_QPA_PLATFORM") != nullptr;
    if (!isPlatformChosen)
        ::setenv("QT_QPA_PLATFORM", "xcb", 1);
    const bool sharesNoPictures = isShortOfDescriptors();
    if (sharesNoPictures)
        ::setenv("QT_XCB_NO_MITSHM", "1", 1);
    usualHandler = qInstallMessageHandler(hear);
    QApplication application(argc, argv);
    if (sharesNoPictures)
        ::unsetenv("QT_XCB_NO_MITSHM");
    // What is started from here chooses for itself.
    if (!isPlatformChosen)
        ::unsetenv("QT_QPA_PLATFORM");
    QApplication::setApplicationName(QStringLiteral("velmorquit"));
    QApplication::setDesktopFileName(QStringLiteral("org.velmorquit.VelmorQuit"));
    QApplication::setQuitOnLastWindowClosed(false);
    neverRestart(application);
    // Qt has taken out what it understands, the session manager's own among them.
    if (argc > 1)
        log.write(StartSwitches::unknownLine({argv + 1, argv + argc}));

    keepReading(QDBusConnection::sessionBus());
    BusCommands commands(log);
    const Start start = handOver(commands, log, platformData);
    if (start.status)
        return *start.status;
    // Until here such a signal may end the program at once: there is nothing to put in order yet.
    EndSignals endSignals;

    ProcKernel kernel;
    QtMainLoop loop;
    PropertyListPreferences preferences(loop, log, defaultPreferencesFile());
    X11Toplevels toplevels(loop, log, std::move(*connection));
    BusQuit busQuit(QDBusConnection::sessionBus());
    ApplicationLauncher launcher({"/proc/self/exe", startEntrySwitch}, log);
    const auto askWithoutWindows = [&busQuit](ProcessId process) { busQuit.quit(process); };
    const DisplayServers displays(DisplayServers::Environment::ofThisProcess());
    const QDBusConnection faceBus = QDBusConnection::sessionBus();
    X11Events faceEvents(std::move(*faceConnection));
    TrayOwners trayOwners(faceBus, faceEvents, ::getpid());
    const auto inTray = [&trayOwners] { return trayOwners.processes(); };
    DesktopInput input(loop, faceBus, faceEvents,
                       displays.hasAnotherDisplay() ? DesktopInput::Server::guest
                                                    : DesktopInput::Server::whole);
    LinuxWorkspace workspace(
        loop, log, toplevels,
        {.withoutWindows = {.ask = askWithoutWindows,
                            .trayOwners = inTray,
                            .clickInTray =
                                [&trayOwners](ProcessId owner) { return trayOwners.click(owner); },
                            .sinceInput = [&input] { return input.askServer(); }},
         .launch = [&launcher](const std::string& path) { launcher.launch(path); },
         .hasAnotherDisplay = [&displays] { return displays.hasAnotherDisplay(); }});
    kernel.setWindowOwners([&toplevels] { return windowOwners(toplevels); });
    LinuxWindows windows(toplevels, workspace,
                         {.askWithoutWindows = askWithoutWindows, .trayOwners = inTray});
    const ProcProcesses processes(
        {.windowOwners = [&toplevels] { return windowOwners(toplevels); },
         .trayOwners = inTray,
         .desktopProcesses = [&toplevels] { return toplevels.shellProcesses(); }});
    QtProgram program;
    LinuxChildProcesses children;
    const LinuxFiles files;
    const auto environment = PowerBus::Environment::ofThisProcess();
    PowerBus sessionBus = PowerBus::session(environment);
    PowerBus systemBus = PowerBus::system(environment);
    keepReading(sessionBus.connection());
    keepReading(systemBus.connection());
    BusEndService endService(sessionBus, systemBus,
                             {qEnvironmentVariable("XDG_SESSION_ID").toStdString()});
    BusSessionRegistry registry(sessionBus, systemBus, {});
    BusSleepHolds sleepHold(sessionBus, systemBus);
    SessionEnd sessionEnd(
        {loop, log, workspace, windows, processes, registry, input, sleepHold, endService});
    UDisksVolumes volumes(loop, log, systemBus.connection());
    const FinishedWork finishedWork;
    BusNotice scheduleNotice(sessionBus.connection());
    BusNotice answerNotice(sessionBus.connection());
    BusNotice endNotice(sessionBus.connection());
    BusNotice runNotice(sessionBus.connection());
    X11WindowSystem windowSystem(loop, faceEvents);
    const DesktopAppearance appearance(faceBus, faceEvents);
    const DesktopTrayHosts trayHosts(loop, faceBus, faceEvents);
    AppDelegate delegate({loop, preferences, workspace, kernel, log, commands, program,
                          language.formats(), volumes, sessionEnd, sleepHold, children, files,
                          backupTool()},
                         {.windows = windowSystem,
                          .appearance = appearance,
                          .trayHosts = trayHosts,
                          .traits = traitsOf(SessionEnvironment::ofThisProcess())},
                         {scheduleNotice, answerNotice, endNotice, runNotice});
    if (start.note)
        answerNotice.show({.title = "Velmor Quit", .text = *start.note});
    endSignals.onAsked = [&delegate] { delegate.end(); };
    return QApplication::exec();
}

} // namespace
} // namespace velmorquit

int main(int argc, char** argv) { return velmorquit::run(argc, argv); }
