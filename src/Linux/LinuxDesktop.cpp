#include "Linux/LinuxDesktop.h"

#include "Codecs/PreferencesFile.h"
#include "Linux/Appearance/DesktopAppearance.h"
#include "Linux/Applications/ApplicationLauncher.h"
#include "Linux/Applications/BusQuit.h"
#include "Linux/Applications/DesktopEntryStart.h"
#include "Linux/Applications/LinuxWindows.h"
#include "Linux/Applications/LinuxWorkspace.h"
#include "Linux/Bus/KeepReading.h"
#include "Linux/Files/LinuxFiles.h"
#include "Linux/Input/DesktopInput.h"
#include "Linux/Loop/QtMainLoop.h"
#include "Linux/Notices/BusNotice.h"
#include "Linux/Power/BusSleepHolds.h"
#include "Linux/Power/PowerBus.h"
#include "Linux/Preferences/PropertyListPreferences.h"
#include "Linux/Proc/LinuxChildProcesses.h"
#include "Linux/Proc/ProcKernel.h"
#include "Linux/Proc/ProcProcesses.h"
#include "Linux/Program/InstalledBackupTool.h"
#include "Linux/Program/QtProgram.h"
#include "Linux/Session/BusEndService.h"
#include "Linux/Session/BusSessionRegistry.h"
#include "Linux/Tray/DesktopTrayHosts.h"
#include "Linux/Tray/TrayOwners.h"
#include "Linux/Volumes/UDisksVolumes.h"
#include "Linux/Windows/DisplayServers.h"
#include "Linux/Windows/QtScreens.h"
#include "Linux/Windows/SessionTraits.h"

#include <set>
#include <string>
#include <utility>

#include <unistd.h>

namespace velmorquit {

namespace {

std::set<ProcessId> windowOwners(ToplevelSource& source) {
    std::set<ProcessId> owners;
    for (const Toplevel& toplevel : source.toplevels()) {
        if (toplevel.isOrdinary && toplevel.process > 0)
            owners.insert(toplevel.process);
    }
    return owners;
}

} // namespace

/// The loop, and the parts that need only it.
struct LinuxDesktop::Base {
    explicit Base(SystemLog& log) : preferences(loop, log, defaultPreferencesFile()) {}

    ProcKernel kernel;
    QtMainLoop loop;
    PropertyListPreferences preferences;
    QtProgram program;
    LinuxChildProcesses children;
    LinuxFiles files;
};

/// The applications of the session, their windows and processes, and the user's input to them.
struct LinuxDesktop::Applications {
    Applications(MainLoop& loop, SystemLog& log, const WindowSources& sources);

    [[nodiscard]] LinuxWorkspace::Surroundings surroundings();

    ToplevelSource& toplevels;
    QDBusConnection bus = QDBusConnection::sessionBus();
    BusQuit quit{bus};
    ApplicationLauncher launcher;
    DisplayServers displays{DisplayServers::Environment::ofThisProcess()};
    TrayOwners trayOwners;
    DesktopInput input;
    LinuxWorkspace workspace;
    LinuxWindows windows;
    ProcProcesses processes;
};

LinuxDesktop::Applications::Applications(MainLoop& loop, SystemLog& log,
                                         const WindowSources& sources)
    : toplevels(*sources.toplevels), launcher({"/proc/self/exe", startEntrySwitch}, log),
      trayOwners(bus, sources.tray, ::getpid()),
      input(loop, bus, sources.idle,
            displays.hasAnotherDisplay() ? DesktopInput::Server::guest
                                         : DesktopInput::Server::whole),
      workspace(loop, log, toplevels, surroundings()),
      windows(toplevels, workspace,
              {.askWithoutWindows = [this](ProcessId process) { quit.quit(process); },
               .trayOwners = [this] { return trayOwners.processes(); }}),
      processes({.windowOwners = [this] { return windowOwners(toplevels); },
                 .trayOwners = [this] { return trayOwners.processes(); },
                 .desktopProcesses = [this] { return toplevels.shellProcesses(); }}) {}

LinuxWorkspace::Surroundings LinuxDesktop::Applications::surroundings() {
    return {.withoutWindows = {.ask = [this](ProcessId process) { quit.quit(process); },
                               .trayOwners = [this] { return trayOwners.processes(); },
                               .clickInTray =
                                   [this](ProcessId owner) { return trayOwners.click(owner); },
                               .sinceInput = [this] { return input.askServer(); }},
            .launch = [this](const std::string& path) { launcher.launch(path); },
            .hasAnotherDisplay = [this] { return displays.hasAnotherDisplay(); }};
}

/// The services of the session and of the system, over the buses on which they can be ended.
struct LinuxDesktop::Services {
    Services(MainLoop& loop, SystemLog& log) : volumes(loop, log, systemBus.connection()) {
        keepReading(sessionBus.connection());
        keepReading(systemBus.connection());
    }

    PowerBus sessionBus = PowerBus::session(PowerBus::Environment::ofThisProcess());
    PowerBus systemBus = PowerBus::system(PowerBus::Environment::ofThisProcess());
    BusEndService end{
        sessionBus, systemBus, {qEnvironmentVariable("XDG_SESSION_ID").toStdString()}};
    BusSessionRegistry registry{sessionBus, systemBus, {}};
    BusSleepHolds sleepHolds{sessionBus, systemBus};
    UDisksVolumes volumes;
};

/// The notices, and the desktop's services for the program's own windows.
struct LinuxDesktop::Face {
    Face(MainLoop& loop, const QDBusConnection& noticeBus, const WindowSources& sources)
        : schedule(noticeBus), answers(noticeBus), end(noticeBus), run(noticeBus), screens(loop),
          appearance(bus, sources.settings), trayHosts(loop, bus, sources.tray) {}

    QDBusConnection bus = QDBusConnection::sessionBus();
    BusNotice schedule;
    BusNotice answers;
    BusNotice end;
    BusNotice run;
    QtScreens screens;
    DesktopAppearance appearance;
    DesktopTrayHosts trayHosts;
};

LinuxDesktop::LinuxDesktop(SystemLog& log, RemoteCommands& commands,
                           std::unique_ptr<Windowing> windowing)
    : log_(log), commands_(commands), base_(std::make_unique<Base>(log)),
      windowing_(std::move(windowing)), sources_(windowing_->begin(base_->loop, log)),
      applications_(std::make_unique<Applications>(base_->loop, log, sources_)),
      services_(std::make_unique<Services>(base_->loop, log)),
      face_(std::make_unique<Face>(base_->loop, services_->sessionBus.connection(), sources_)) {
    base_->kernel.setWindowOwners([source = sources_.toplevels] { return windowOwners(*source); });
}

LinuxDesktop::~LinuxDesktop() = default;

SessionPorts LinuxDesktop::sessionPorts() {
    return {.loop = base_->loop,
            .log = log_,
            .workspace = applications_->workspace,
            .windows = applications_->windows,
            .processes = applications_->processes,
            .registry = services_->registry,
            .input = applications_->input,
            .sleepHold = services_->sleepHolds,
            .service = services_->end};
}

Desktop LinuxDesktop::ports(const Formats& formats, LoginWindow& loginWindow) {
    return {.loop = base_->loop,
            .preferences = base_->preferences,
            .workspace = applications_->workspace,
            .kernel = base_->kernel,
            .log = log_,
            .remote = commands_,
            .application = base_->program,
            .formats = formats,
            .volumes = services_->volumes,
            .loginWindow = loginWindow,
            .sleepHold = services_->sleepHolds,
            .children = base_->children,
            .files = base_->files,
            .backupTool = installedBackupTool()};
}

DesktopFace LinuxDesktop::face() {
    return {.windows = *sources_.own,
            .screens = face_->screens,
            .appearance = face_->appearance,
            .trayHosts = face_->trayHosts,
            .traits = traitsOf(SessionEnvironment::ofThisProcess())};
}

LinuxDesktop::Notices LinuxDesktop::notices() {
    return {.schedule = face_->schedule,
            .answers = face_->answers,
            .end = face_->end,
            .run = face_->run};
}

} // namespace velmorquit
