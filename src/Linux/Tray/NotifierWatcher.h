#pragma once

#include "Linux/Bus/BusCall.h"
#include "Linux/Bus/BusName.h"
#include "Linux/Loop/Paced.h"
#include "Loop/MainLoop.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <functional>
#include <optional>

namespace velmorquit {

/// Knows which process on the session bus keeps the list of tray icons, and whether any host draws
/// them.
class NotifierWatcher final : public QObject {
    Q_OBJECT

public:
    /// How long a watcher present at the start may take to tell whether there is a host.
    static constexpr Duration patience = 3s;

    /// Waits only for the bus to tell who the watcher is. Calls `changed`, in a turn of its own,
    /// when `presentOne` changes.
    NotifierWatcher(MainLoop& loop, QDBusConnection bus, std::function<void()> changed);

    /// The unique name of the watcher; empty while there is none, or no host that draws its list.
    /// A watcher present at the start counts as having a host until it has answered, since nearly
    /// all have one, but not for longer than `patience`. A later one counts only after its
    /// answer.
    [[nodiscard]] const QString& presentOne() const { return present_; }

private Q_SLOTS:
    void hearHosts(const QDBusMessage& signal);

private:
    void listen();
    void hearOwner(const QString& owner);
    [[nodiscard]] QString askOwner() const;
    void askForHosts();
    void hearAnswer(const QDBusMessage& answer);
    void become(const QString& present);

    QDBusConnection bus_;
    std::function<void()> changed_;
    QString owner_;
    QString present_;
    std::optional<BusName> name_;
    BusCall question_;
    bool isOutdated_ = false; ///< hosts have changed since the last question
    Handle losingPatience_;
    Paced questions_;
};

} // namespace velmorquit
