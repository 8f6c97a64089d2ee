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
    /// Takes a command and the connection that gave it, and tells the answer, maybe later.
    using Perform =
        std::function<void(const RemoteCommand&, const QString& connection, const Answered&)>;

    /// `owner` is what is registered on the bus. Whatever comes in goes to `perform`.
    ApplicationInterface(QObject* owner, Perform perform);

public Q_SLOTS:
    /// Is the command `show`, with the activation token of the caller where it has one.
    void Activate(const QVariantMap& platformData, const QDBusMessage& call);
    /// As `Activate`: the program opens no files.
    void Open(const QStringList& files, const QVariantMap& platformData, const QDBusMessage& call);
    /// Is the command `action` with that name; of the parameters a number is the minutes, and a
    /// text or a list of texts is passed on as it is ("minutes=30", "then=shutDown"). A fault in
    /// them is an error at once; what comes of the action is shown to the user.
    void ActivateAction(const QString& action, const QVariantList& parameters,
                        const QVariantMap& platformData, const QDBusMessage& call);

private:
    Perform perform_;
};

/// What a launcher has given this process so that a window may come to the front, in the form in
/// which `Activate` takes it. The environment has it no more afterwards: it is for this process
/// alone.
[[nodiscard]] QVariantMap takePlatformData();

} // namespace velmorquit
