#pragma once

#include "Platform/RemoteCommands.h"

#include <QDBusConnection>
#include <QDBusContext>
#include <QObject>

namespace velmorquit {

/// Commands over the session bus: name `org.velmorquit.VelmorQuit`, path
/// `/org/velmorquit/VelmorQuit`, interface `org.velmorquit.VelmorQuit1`.
class BusCommands final : public QObject, protected QDBusContext, public RemoteCommands {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.velmorquit.VelmorQuit1")

public:
    enum class Claim {
        ours,  ///< this process has the name now
        taken, ///< another process of the user has it
        noBus, ///< there is no session bus
    };

    /// Takes the program's name on the session bus.
    Claim claimName();

    bool serve(std::function<RemoteAnswer(const RemoteCommand&)> handler) override;
    void announce(std::string_view change) override;

public Q_SLOTS:
    /// Does what `verb` says and returns a JSON text. Errors: `….Error.Refused`, `….Error.Unknown`.
    Q_SCRIPTABLE QString Perform(const QString& verb, const QStringList& arguments);

Q_SIGNALS:
    /// Something has changed: a JSON text.
    Q_SCRIPTABLE void Changed(const QString& change);

private:
    QDBusConnection bus_ = QDBusConnection::sessionBus();
    std::function<RemoteAnswer(const RemoteCommand&)> handler_;
};

} // namespace velmorquit
