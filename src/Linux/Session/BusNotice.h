#pragma once

#include "Linux/Session/EndNotice.h"
#include "Linux/Session/PowerBus.h"

#include <QDBusMessage>
#include <QObject>
#include <QString>

#include <optional>

namespace velmorquit {

/// Notices by the desktop's notification service.
class BusNotice final : public QObject, public EndNotice {
    Q_OBJECT

public:
    /// `session` outlives it.
    explicit BusNotice(const PowerBus& session) : session_(session) {}
    /// Leaves what has come of a request where the user can still read it.
    ~BusNotice() override;

    void showWaiting(LoginRequest request, const std::vector<std::string>& names) override;
    void showGivenUp(LoginRequest request, const std::vector<std::string>& names) override;
    void showFailure(LoginRequest request) override;
    void withdraw() override;

private Q_SLOTS:
    void hearAction(const QDBusMessage& signal);
    void hearClosed(const QDBusMessage& signal);

private:
    struct Notice {
        std::string title;
        std::string text;
        bool canBeCancelled = false;
    };

    void show(Notice notice);
    /// Brings what the service shows in line with `wanted_`.
    void update();
    void send(const Notice& notice);
    void close();
    void hearReply(const QDBusMessage& reply);
    [[nodiscard]] bool isOurs(const QDBusMessage& signal) const;
    void listen();

    const PowerBus& session_;
    std::optional<Notice> wanted_;
    /// Whether the service was told of `wanted_`.
    bool isTold_ = true;
    /// Whether the service hasn't said yet what number a notice has.
    bool isSending_ = false;
    /// The number of the notice that is shown, 0 without one, and the service that shows it.
    uint shown_ = 0;
    QString shownBy_;
    bool isListening_ = false;
};

} // namespace velmorquit
