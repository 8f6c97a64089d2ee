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
/// `/org/velmorquit/VelmorQuit`, interface `org.velmorquit.VelmorQuit1`, and beside it the one that
/// launchers use.
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
        std::string name{};    ///< file name of its program; empty when that can't be told
        bool isThisProgram = false;
    };

    explicit BusCommands(SystemLog& log);

    /// Takes the program's name on the session bus. May be called again when it was taken.
    Claim claimName();

    /// Looks at who has the name: this program, by its file or by what it answers. Waits at most
    /// 2.5 seconds, for the start of a program.
    [[nodiscard]] Holder holder();

    /// Takes the name as soon as whoever has it lets it go.
    void claimLater();

    /// Asks the process that has the name to show itself, and waits for its answer, at most
    /// `limit`: for the start of a program that is going to end. False when there was no good
    /// answer.
    bool showOther(const QVariantMap& platformData, std::chrono::milliseconds limit);

    bool serve(Handler handler) override;
    void announce(std::string_view change) override;

public Q_SLOTS:
    /// Does what `verb` says and returns a JSON text. Errors: `….Error.Refused`, also for whoever
    /// calls too often or with too much, `….Error.Unknown` and, when the user is asked first
    /// because the caller is in a sandbox, `….Error.Asking`.
    Q_SCRIPTABLE QString Perform(const QString& verb, const QStringList& arguments);

Q_SIGNALS:
    /// Something has changed: a JSON text.
    Q_SCRIPTABLE void Changed(const QString& change);

private Q_SLOTS:
    void loseBus();

private:
    using Answered = ApplicationInterface::Answered;

    /// Has the command carried out that `connection` gave: at once, unless it matters whose it is.
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
    /// What came before one, and waits until its caller is known, isn't done after it.
    unsigned cancellations_ = 0;
};

} // namespace velmorquit
