#include "Program.h"

#include "AppDelegate.h"
#include "Linux/Bus/KeepReading.h"
#include "Linux/LinuxDesktop.h"
#include "Linux/Program/OwnProcess.h"
#include "Linux/Program/QtStart.h"
#include "Linux/Program/SingleInstance.h"
#include "Linux/Remote/BusCommands.h"
#include "Services/SessionEnd/SessionEnd.h"
#include "Services/StartSwitches.h"

#include <QApplication>

#include <cstdlib>
#include <utility>

namespace velmorquit {

int runProgram(int argc, char** argv, SystemLog& log, const Formats& formats) {
    surviveTheTerminal();
    giveMemoryBack();
    // Before Qt takes it for itself.
    const QVariantMap platformData = takePlatformData();
    auto windowing = Windowing::choose(log);
    if (!windowing)
        return EXIT_FAILURE;
    const QtStart qt(*windowing);
    QApplication application(argc, argv);
    qt.finish(application);
    // Qt has removed the arguments that it knows, including those of the session manager.
    if (argc > 1)
        log.write(StartSwitches::unknownLine({argv + 1, argv + argc}));

    keepReading(QDBusConnection::sessionBus());
    BusCommands commands(log);
    const Start start = takeOverOrHandOver(commands, log, platformData);
    if (start.status)
        return *start.status;

    LinuxDesktop desktop(log, commands, std::move(windowing));
    SessionEnd sessionEnd(desktop.sessionPorts());
    const LinuxDesktop::Notices notices = desktop.notices();
    AppDelegate delegate(desktop.ports(formats, sessionEnd), desktop.face(),
                         {notices.schedule, notices.answers, notices.end, notices.run});
    if (start.note)
        notices.answers.show({.title = "Velmor Quit", .text = *start.note});
    desktop.onEndAsked([&delegate] { delegate.end(); });
    return QApplication::exec();
}

} // namespace velmorquit
