#pragma once

#include "Linux/Power/PowerBus.h"

#include <QDBusMessage>
#include <QDBusUnixFileDescriptor>
#include <QObject>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace velmorquit {

/// Holds off the computer's sleep: at login1, and at the session's own manager of power, which may
/// send the computer to sleep without asking login1 for what is idle.
///
/// Nobody has to be there, and whoever is there may refuse: then there is no such hold. All of it
/// ends with the object, and with the process.
class BusSleepHold final : public QObject {
public:
    enum class Against {
        idleSleep, ///< only sleep that comes because nobody uses the computer
        anySleep,  ///< also one that somebody asks for
    };

    /// Both buses outlive it. `patience` is in milliseconds.
    BusSleepHold(const PowerBus& session, const PowerBus& system, int patience = 3000)
        : session_(session), system_(system), patience_(patience) {}
    ~BusSleepHold() override;

    /// Asks for the hold and returns at once. For who doesn't answer in time the next one is asked;
    /// what is granted all the same is taken when nobody else has, and given back otherwise.
    /// `reason` is told to a user who wants the computer to sleep. A hold from before ends.
    void begin(const std::string& reason, Against against);
    /// What is answered after this is given back.
    void end();

    /// Names of those who are asked.
    [[nodiscard]] static QStringList sessionServices();
    [[nodiscard]] static QString systemService();

    [[nodiscard]] bool isHeldBySystem() const { return lock_.isValid(); }
    [[nodiscard]] bool isHeldBySession() const { return grant_.has_value(); }

private:
    struct Manager;
    /// What a manager of the session has granted.
    struct Grant {
        const Manager* manager;
        QString owner; ///< the connection that has granted it
        uint cookie;
    };
    using Answer = std::function<void(const QDBusMessage&)>;

    static void call(const PowerBus& bus, const QDBusMessage& message, const Answer& answer);
    void askSystem();
    /// Asks the managers from this one on, until one grants it.
    void askSession(const Manager* manager);
    static void giveBack(const QDBusConnection& bus, const Grant& grant);

    static const Manager managers[2];

    const PowerBus& session_;
    const PowerBus& system_;
    int patience_;
    std::string reason_;
    Against against_ = Against::idleSleep;
    /// Counts begins and ends: an answer to a call from before another one is too late.
    std::uint64_t round_ = 0;
    QDBusUnixFileDescriptor lock_;
    std::optional<Grant> grant_;
    /// Tells an answer whether there is still anybody to hear it.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace velmorquit
