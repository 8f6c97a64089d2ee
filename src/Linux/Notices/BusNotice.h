#pragma once

#include "Linux/Bus/BusCall.h"
#include "Linux/Bus/BusName.h"
#include "Platform/Notice.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>

namespace velmorquit {

/// A notice of the desktop's notification service. What the user put away doesn't come back by
/// itself.
class BusNotice final : public QObject, public Notice {
    Q_OBJECT

public:
    /// Nothing is shown over a bus that isn't connected. A service that takes longer than
    /// `patience` (milliseconds) to show a notice counts as one where it can't be answered.
    explicit BusNotice(const QDBusConnection& bus, int patience = 5000);
    /// Withdraws what would stay; the rest is left where the user can still read it.
    ~BusNotice() override;

    void show(const Content& content) override;
    void withdraw() override;

private Q_SLOTS:
    void hearAction(const QDBusMessage& signal);
    void hearClosed(const QDBusMessage& signal);

private:
    /// Brings what the service shows in line with `wanted_`.
    void update();
    void prepare(const Content& content);
    /// `text` is the content's in the form that the service understands.
    void send(const Content& content, const QString& text);
    void close();
    void hearReply(const QDBusMessage& reply);
    void findOutWhetherAnswerable();
    void hearCapabilities(const QDBusMessage& reply);
    void noteUnanswerable();
    [[nodiscard]] bool isOurs(const QDBusMessage& signal) const;
    void listen();
    void hearOwner(const QString& owner);

    QDBusConnection bus_;
    std::optional<Content> wanted_;
    /// Whether the service was told of `wanted_`.
    bool isTold_ = true;
    /// Open until the service has said what number a notice has.
    BusCall sending_;
    QTimer losingPatience_;
    BusCalls capabilities_;
    /// The number of the notice that is shown, 0 without one, and the service that shows it.
    uint shown_ = 0;
    QString shownBy_;
    /// Whether what stays has gone with the service that showed it.
    bool isLost_ = false;
    /// The service that has last told what it can do, and whether its notices have buttons.
    QString knownService_;
    bool hasButtons_ = false;
    std::optional<BusName> name_; ///< from the first notice on
};

} // namespace velmorquit
