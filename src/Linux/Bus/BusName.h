#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <functional>

namespace velmorquit {

/// Tells when a name on a bus gets another owner, or none.
class BusName final : public QObject {
    Q_OBJECT

public:
    /// `owner` is the unique name; empty when nobody owns the name any more, or the bus has gone.
    using Changed = std::function<void(const QString& owner)>;

    /// Doesn't wait; the owner at the start isn't told. Calls `changed` in a turn of
    /// its own.
    BusName(QDBusConnection bus, const QString& name, Changed changed);

private Q_SLOTS:
    void hearOwner(const QDBusMessage& signal);
    void hearDisconnected();

private:
    QDBusConnection bus_;
    Changed changed_;
};

} // namespace velmorquit
