#pragma once

#include "Platform/RemoteCommands.h"

#include <QDBusAbstractAdaptor>
#include <QDBusMessage>
#include <QStringList>
#include <QVariantMap>

#include <functional>

namespace velmorquit {

/// The interface by which launchers and a second start reach the program.
class ApplicationInterface final : public QDBusAbstractAdaptor {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    using Answered = std::function<void(const RemoteAnswer&)>;
    /// Takes a command and the connection that sent it, and delivers the answer, maybe later.
    using Perform =
        std::function<void(const RemoteCommand&, const QString& connection, const Answered&)>;

    /// `owner` is the object registered on the bus. All calls go to `perform`.
    ApplicationInterface(QObject* owner, Perform perform);

public Q_SLOTS:
    /// The command `show`, with the caller's activation token if it has one.
    void Activate(const QVariantMap& platformData, const QDBusMessage& call);
    /// Same as `Activate`: the program opens no files.
    void Open(const QStringList& files, const QVariantMap& platformData, const QDBusMessage& call);
    /// The command `action` with that name; a number among the parameters means minutes, and a text
    /// or a list of texts is passed on unchanged ("minutes=30", "then=shutDown"). Wrong parameters
    /// are an error at once; the action's result is shown to the user.
    void ActivateAction(const QString& action, const QVariantList& parameters,
                        const QVariantMap& platformData, const QDBusMessage& call);

private:
    Perform perform_;
};

/// The data by which a launcher lets this process bring a window to the front, in the form that
/// `Activate` takes. It is removed from the environment, since it is meant for this process
/// alone.
[[nodiscard]] QVariantMap takePlatformData();

} // namespace velmorquit
