#include "CommandLine.h"
#include "Session.h"

#include <QCoreApplication>
#include <QTextStream>
#include <QTimer>

#include <csignal>

using namespace velmorquit;

int main(int argc, char** argv) {
    // A run may close the very terminal in which its end is waited for.
    for (const int signal : {SIGHUP, SIGPIPE})
        std::signal(signal, SIG_IGN);
    const QCoreApplication application(argc, argv);
    const auto line = parseCommandLine(QCoreApplication::arguments().mid(1));
    if (const auto* wrong = std::get_if<QString>(&line)) {
        QTextStream(stderr) << "velmorctl: " << *wrong << "\n\n" << usage();
        return static_cast<int>(ExitStatus::usage);
    }
    if (std::get<CommandLine>(line).command == CommandLine::Command::help) {
        QTextStream(stdout) << usage();
        return static_cast<int>(ExitStatus::success);
    }
    Session session(std::get<CommandLine>(line));
    QTimer::singleShot(0, &session, [&session] { session.start(); });
    return QCoreApplication::exec();
}
