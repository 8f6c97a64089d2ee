#pragma once

#include "Platform/EndService.h"
#include "Linux/Session/PowerBus.h"
#include "Platform/Time.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QElapsedTimer>
#include <QObject>
#include <QSet>

#include <string>

namespace velmorquit {

/// The session manager that is on the session bus, or login1 on the system bus: what the session
/// manager does only after a question of its own, and what there is none for, login1 does.
class BusEndService final : public QObject, public EndService {
public:
    struct Settings {
        /// The session as login1 knows it; empty: the one that this process is in.
        std::string sessionId;
        /// Time that an answer may take.
        Duration limit = 10s;
    };

    /// The buses outlive it.
    BusEndService(const PowerBus& session, const PowerBus& system, Settings settings);

    [[nodiscard]] bool isReady() const override { return isManagerKnown(); }
    [[nodiscard]] std::optional<std::string> obstacle(LoginRequest request,
                                                      EndForm form) const override;
    void carryOut(LoginRequest request, EndForm form) override;

private:
    /// A call, and the bus that it goes to.
    struct Call {
        QDBusConnection bus;
        QDBusMessage message;
        /// Whether whoever is called may be gone before it has answered, since the session ends.
        bool mayEndCallee = false;
    };
    /// Which names are there to be called; none while that is not known yet.
    struct Names {
        std::optional<QSet<QString>> owned;
        std::optional<QSet<QString>> startable;

        [[nodiscard]] bool has(const QString& name) const;
    };

    void watch(QDBusServiceWatcher& watcher, const PowerBus& bus, Names& names,
               const QStringList& watched);
    void listNames(const PowerBus& bus, const QString& method, std::optional<QSet<QString>>& names);
    /// Whether it is known which session manager there is, if any.
    [[nodiscard]] bool isManagerKnown() const;
    [[nodiscard]] std::optional<Call> managerCall(LoginRequest request) const;
    [[nodiscard]] Call loginCall(LoginRequest request) const;
    void terminateOwnSession();
    void send(const Call& call);
    void answer(const std::optional<std::string>& failure);

    const PowerBus& session_;
    const PowerBus& system_;
    Settings settings_;
    Names sessionNames_;
    Names systemNames_;
    /// What is to be done as soon as that is known.
    std::optional<LoginRequest> early_;
    QDBusServiceWatcher sessionWatcher_;
    QDBusServiceWatcher systemWatcher_;
};

} // namespace velmorquit
