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

/// Holds off the computer's sleep: at login1, and at the session's own power manager, which may put
/// an idle computer to sleep without asking login1.
///
/// Either may be missing or refuse; there is then no hold with it. All holds end with this object,
/// and with the process.
class BusSleepHold final : public QObject {
public:
    enum class Against {
        idleSleep, ///< only the sleep of an idle computer
        anySleep,  ///< also sleep that somebody requests
    };

    /// Both buses must outlive it. `patience` is in milliseconds.
    BusSleepHold(const PowerBus& session, const PowerBus& system, int patience = 3000)
        : session_(session), system_(system), patience_(patience) {}
    ~BusSleepHold() override;

    /// Requests the hold and returns at once. If a manager doesn't answer in time, the next one is
    /// asked; a late grant is kept if nobody else has granted one, and given back otherwise.
    /// `reason` is shown to users who want the computer to sleep. Replaces an earlier hold.
    void begin(const std::string& reason, Against against);
    /// Ends the hold; later grants are given back.
    void end();

    /// Names of the services that are asked.
    [[nodiscard]] static QStringList sessionServices();
    [[nodiscard]] static QString systemService();

    [[nodiscard]] bool isHeldBySystem() const { return lock_.isValid(); }
    [[nodiscard]] bool isHeldBySession() const { return grant_.has_value(); }

private:
    struct Manager;
    /// A hold granted by one of the session's managers.
    struct Grant {
        const Manager* manager;
        QString owner; ///< the connection that granted it
        uint cookie;
    };
    using Answer = std::function<void(const QDBusMessage&)>;

    static void call(const PowerBus& bus, const QDBusMessage& message, const Answer& answer);
    void askSystem();
    /// Asks the managers, beginning with this one, until one grants the hold.
    void askSession(const Manager* manager);
    static void giveBack(const QDBusConnection& bus, const Grant& grant);

    static const Manager managers[2];

    const PowerBus& session_;
    const PowerBus& system_;
    int patience_;
    std::string reason_;
    Against against_ = Against::idleSleep;
    /// Counts begins and ends, to recognise answers to earlier calls.
    std::uint64_t round_ = 0;
    QDBusUnixFileDescriptor lock_;
    std::optional<Grant> grant_;
    /// Lets answers notice that this object is gone.
    std::shared_ptr<bool> alive_ = std::make_shared<bool>(true);
};

} // namespace velmorquit
