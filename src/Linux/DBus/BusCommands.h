#pragma once

#include "Linux/DBus/ApplicationInterface.h"
#include "Platform/RemoteCommands.h"
#include "Platform/SystemLog.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>

#include <chrono>

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
        taken, ///< another process of the user has it
        noBus, ///< there is no session bus
    };

    explicit BusCommands(SystemLog& log);

    /// Takes the program's name on the session bus. May be called again when it was taken.
    Claim claimName();

    /// Asks the process that has the name to show itself, and waits for its answer, at most
    /// `limit`: for the start of a program that is going to end. False when there was no good
    /// answer.
    bool showOther(const QVariantMap& platformData, std::chrono::milliseconds limit);

    bool serve(std::function<RemoteAnswer(const RemoteCommand&)> handler) override;
    void announce(std::string_view change) override;

public Q_SLOTS:
    /// Does what `verb` says and returns a JSON text. Errors: `….Error.Refused`, `….Error.Unknown`.
    Q_SCRIPTABLE QString Perform(const QString& verb, const QStringList& arguments);

Q_SIGNALS:
    /// Something has changed: a JSON text.
    Q_SCRIPTABLE void Changed(const QString& change);

private Q_SLOTS:
    void loseBus();

private:
    [[nodiscard]] RemoteAnswer answer(const RemoteCommand& command) const;

    SystemLog& log_;
    QDBusConnection bus_ = QDBusConnection::sessionBus();
    std::function<RemoteAnswer(const RemoteCommand&)> handler_;
    ApplicationInterface application_{
        this, [this](const RemoteCommand& command) { return answer(command); }};
};

} // namespace velmorquit
