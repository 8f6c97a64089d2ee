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

/// Knows who on the session bus keeps the list of tray icons for those that draw them, and whether
/// anybody does draw them.
class NotifierWatcher final : public QObject {
    Q_OBJECT

public:
    /// How long the watcher that was there at the start may take to say whether anybody draws.
    static constexpr Duration patience = 3s;

    /// Waits for the bus to say who the watcher is, and for nobody else. Calls `changed`, in a turn
    /// of its own, when `presentOne` does.
    NotifierWatcher(MainLoop& loop, QDBusConnection bus, std::function<void()> changed);

    /// The watcher, by its unique name; empty while there is none or nobody draws what it lists.
    /// The one that was there at the start counts as having somebody until it has answered, since
    /// nearly all have, but not for longer than `patience`. One that came later counts from its
    /// answer on.
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
    bool isOutdated_ = false; ///< somebody has come or gone since it was asked
    Handle losingPatience_;
    Paced questions_;
};

} // namespace velmorquit
