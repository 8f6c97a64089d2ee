#pragma once

#include "Linux/Bus/BusCall.h"
#include "Linux/Bus/BusName.h"
#include "Platform/Notice.h"

#include <QObject>
#include <QString>
#include <QTimer>

#include <optional>

namespace velmorquit {

/// A notice shown by the desktop's notification service. One that the user has dismissed doesn't
/// return by itself.
class BusNotice final : public QObject, public Notice {
    Q_OBJECT

public:
    /// On an unconnected bus nothing is shown. A service that takes longer than `patience`
    /// (milliseconds) to show a notice counts as one where it can't be answered.
    explicit BusNotice(const QDBusConnection& bus, int patience = 5000);
    /// Withdraws a notice that would stay; others are left for the user to read.
    ~BusNotice() override;

    void show(const Content& content) override;
    void withdraw() override;

private Q_SLOTS:
    void hearAction(const QDBusMessage& signal);
    void hearClosed(const QDBusMessage& signal);

private:
    /// Makes the service show what is `wanted_`.
    void update();
    void prepare(const Content& content);
    /// `text` is the content's text in the form that the service understands.
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
    /// Whether `wanted_` has been sent to the service.
    bool isTold_ = true;
    /// Open until the service has told a notice's number.
    BusCall sending_;
    QTimer losingPatience_;
    BusCalls capabilities_;
    /// The number of the notice on show, 0 without one, and the service that shows it.
    uint shown_ = 0;
    QString shownBy_;
    /// Whether a notice that stays was lost with the service that showed it.
    bool isLost_ = false;
    /// The last service that told its capabilities, and whether its notices have buttons.
    QString knownService_;
    bool hasButtons_ = false;
    std::optional<BusName> name_; ///< from the first notice on
};

} // namespace velmorquit
