#pragma once

#include "CommandLine.h"
#include "FollowedRun.h"
#include "ForegroundJob.h"
#include "Interruption.h"
#include "Platform/Formats.h"

#include <QDBusConnection>
#include <QDBusError>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QJsonObject>
#include <QObject>

#include <functional>
#include <optional>
#include <string>

namespace velmorquit {

/// One call of velmorctl: talks to the running program and ends Qt's event loop with the exit
/// status.
class Session final : public QObject {
    Q_OBJECT

public:
    Session(CommandLine line, const Formats& formats, ForegroundJob job);

    /// Begins; to be called from within the event loop.
    void start();

private Q_SLOTS:
    void hear(const QString& change);
    void loseBus();

private:
    void perform(const QString& verb, const QStringList& arguments,
                 std::function<void(const QString& json)> done);
    void send(QDBusMessage call, std::function<void(const QString& answer)> done);
    void hearError(const QDBusError& error);
    /// What answered is not as the program answers: finds out who it was, and ends.
    void blameAnswerer(const std::string& otherwise);
    void show();
    void askThenQuitAll();
    void askThenEndAnyway();
    /// Puts a question to whoever sits at the terminal; without one nobody says yes.
    static bool isAgreed(const std::string& question);
    void quitAll();
    void beginRun();
    /// Leaves the terminal, when a run asks that one too: it would ask about velmorctl.
    void leaveTerminal(const QJsonObject& status);
    void watchRun(const QJsonObject& change);
    void report(const QString& verb, const QStringList& arguments);
    /// Prints what the program says to it.
    void relay(const QString& verb, const QStringList& arguments);
    void fail(const std::string& why, ExitStatus status);
    static void end(ExitStatus status);

    CommandLine line_;
    const Formats& formats_;
    ForegroundJob job_;
    QDBusConnection bus_ = QDBusConnection::sessionBus();
    QDBusServiceWatcher watcher_;
    FollowedRun run_;
    std::optional<Interruption> interruption_;
};

} // namespace velmorquit
