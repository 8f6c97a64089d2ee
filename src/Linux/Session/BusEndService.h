#pragma once

#include "Linux/Bus/BusCall.h"
#include "Linux/Power/PowerBus.h"
#include "Linux/Session/SessionManagers.h"
#include "Loop/Time.h"
#include "Platform/EndService.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusServiceWatcher>
#include <QObject>
#include <QSet>

#include <string>

namespace velmorquit {

/// The session manager on the session bus, or login1 on the system bus: login1 does whatever the
/// session manager would only do after asking the user, and everything if there is none.
///
/// If the user is to be asked, the session manager does that; login1 has no part in it.
class BusEndService final : public QObject, public EndService {
public:
    struct Settings {
        /// The session's id at login1; empty for the session of this process.
        std::string sessionId;
        /// How long an answer may take.
        Duration limit = 10s;
        /// How long a bus may take to list its names.
        Duration namesLimit = 3s;
    };

    /// The buses must outlive it.
    BusEndService(const PowerBus& session, const PowerBus& system, Settings settings);

    [[nodiscard]] bool isReady() const override;
    [[nodiscard]] std::optional<std::string> obstacle(LoginRequest request,
                                                      EndForm form) const override;
    void carryOut(LoginRequest request, EndForm form) override;

private:
    /// What it means when no answer comes.
    enum class Silence {
        failure,
        end,      ///< a callee that disappears before the time is up has gone with the session
        question, ///< the user has not answered yet
    };
    /// A call, and the bus to send it on.
    struct Call {
        QDBusConnection bus;
        QDBusMessage message;
        Silence silence = Silence::failure;
    };
    /// The names that can be called; none until they are known.
    struct Names {
        std::optional<QSet<QString>> owned;
        std::optional<QSet<QString>> startable;

        [[nodiscard]] bool areKnown() const { return owned && startable; }
        [[nodiscard]] bool isOwned(const QString& name) const;
        [[nodiscard]] bool isThere(const QString& name) const;
    };

    void watch(QDBusServiceWatcher& watcher, const PowerBus& bus, Names& names,
               const QStringList& watched);
    void listNames(const PowerBus& bus, const QString& method, std::optional<QSet<QString>>& names);
    [[nodiscard]] std::optional<Call> managerCall(LoginRequest request) const;
    [[nodiscard]] Call loginCall(LoginRequest request) const;
    /// The session manager that can ask the user; null without one.
    [[nodiscard]] const SessionManager* asker() const;
    void haveAsked(LoginRequest request);
    void terminateOwnSession();
    void send(const Call& call);
    void answer(const std::optional<std::string>& failure);
    /// Answers in a later turn.
    void answerLater(std::optional<std::string> failure);

    const PowerBus& session_;
    const PowerBus& system_;
    Settings settings_;
    Names sessionNames_;
    Names systemNames_;
    QDBusServiceWatcher sessionWatcher_;
    QDBusServiceWatcher systemWatcher_;
    BusCalls calls_;
};

} // namespace velmorquit
