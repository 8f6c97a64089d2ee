#pragma once

#include "Linux/Remote/ApplicationInterface.h"
#include "Linux/Remote/BusCallers.h"
#include "Linux/Remote/CallBudget.h"
#include "Platform/RemoteCommands.h"
#include "Platform/RunningApplication.h"
#include "Platform/SystemLog.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusServiceWatcher>
#include <QObject>

#include <chrono>
#include <string>

namespace velmorquit {

/// Commands over the session bus: name `org.velmorquit.VelmorQuit`, path
/// `/org/velmorquit/VelmorQuit`, interface `org.velmorquit.VelmorQuit1`, and also the interface
/// that launchers use.
class BusCommands final : public QObject, protected QDBusContext, public RemoteCommands {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.velmorquit.VelmorQuit1")

public:
    enum class Claim {
        ours,  ///< this process has the name now
        taken, ///< another process has it
        noBus, ///< there is no session bus
    };

    /// The process that has the program's name.
    struct Holder {
        ProcessId process = 0; ///< 0 when the bus doesn't tell
        std::string name{};    ///< file name of its program; empty when unknown
        bool isThisProgram = false;
    };

    explicit BusCommands(SystemLog& log);

    /// Takes the program's name on the session bus. May be called again if it was taken.
    Claim claimName();

    /// Finds out who has the name, and whether it is this program, by its file or its answer. Waits
    /// at most 2.5 seconds; only for the start of a program.
    [[nodiscard]] Holder holder();

    /// Takes the name as soon as its present owner releases it.
    void claimLater();

    /// Asks the process that has the name to show itself, and waits at most `limit` for its
    /// answer. Only for the start of a program that is going to exit. False without a good
    /// answer.
    bool showOther(const QVariantMap& platformData, std::chrono::milliseconds limit);

    bool serve(Handler handler) override;
    void announce(std::string_view change) override;

public Q_SLOTS:
    /// Executes `verb` and returns a JSON text. Errors: `….Error.Refused`, also for callers that
    /// call too often or send too much; `….Error.Unknown`; and `….Error.Asking` if the user is
    /// asked first because the caller is in a sandbox.
    Q_SCRIPTABLE QString Perform(const QString& verb, const QStringList& arguments);

Q_SIGNALS:
    /// A change, as a JSON text.
    Q_SCRIPTABLE void Changed(const QString& change);

private Q_SLOTS:
    void loseBus();

private:
    using Answered = ApplicationInterface::Answered;

    /// Executes the command that `connection` sent: at once, unless it matters who the caller is.
    void take(RemoteCommand command, const QString& connection, const Answered& answered);
    void perform(const RemoteCommand& command, const QString& connection, const Answered& answered);

    SystemLog& log_;
    QDBusServiceWatcher waiting_;
    QDBusConnection bus_ = QDBusConnection::sessionBus();
    BusCallers callers_{bus_};
    Handler handler_;
    ApplicationInterface application_{
        this, [this](const RemoteCommand& command, const QString& connection,
                     const Answered& answered) { take(command, connection, answered); }};
    CallBudget budget_;
    /// Counts cancellations, which also stop earlier commands that wait for their callers.
    unsigned cancellations_ = 0;
};

} // namespace velmorquit
