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

/// The session manager that is on the session bus, or login1 on the system bus: what the session
/// manager does only after a question of its own, and what there is none for, login1 does.
///
/// Where the user is to be asked, it is the session manager that does; login1 has no part in it.
class BusEndService final : public QObject, public EndService {
public:
    struct Settings {
        /// The session as login1 knows it; empty: the one that this process is in.
        std::string sessionId;
        /// Time that an answer may take.
        Duration limit = 10s;
        /// Time that a bus has to say who is there.
        Duration namesLimit = 3s;
    };

    /// The buses outlive it.
    BusEndService(const PowerBus& session, const PowerBus& system, Settings settings);

    [[nodiscard]] bool isReady() const override;
    [[nodiscard]] std::optional<std::string> obstacle(LoginRequest request,
                                                      EndForm form) const override;
    void carryOut(LoginRequest request, EndForm form) override;

private:
    /// What it means that whoever is called doesn't answer.
    enum class Silence {
        failure,
        end,      ///< who has gone before the time was up has done so with the session
        question, ///< the user has not answered yet
    };
    /// A call, and the bus that it goes to.
    struct Call {
        QDBusConnection bus;
        QDBusMessage message;
        Silence silence = Silence::failure;
    };
    /// Which names are there to be called; none while that is not known yet.
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
    /// The session manager that can ask the user; null when there is none.
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
