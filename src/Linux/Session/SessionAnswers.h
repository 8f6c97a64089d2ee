#pragma once

#include "Platform/SessionRegistry.h"

#include <QDBusMessage>
#include <QString>
#include <QVariantMap>

#include <optional>
#include <vector>

namespace velmorquit {

// Reading the answers of services that keep account of sessions. The messages are replies with the
// signatures given here; nothing waits.

/// A session at login1.
struct LoginSession {
    uint user = 0;
    QString userName;
    QString path;
    /// Empty until it has answered, and if it has gone meanwhile.
    QVariantMap properties;
};

/// An inhibitor at the session manager, complete when it has all three.
struct HeldInhibitor {
    std::optional<QString> application;
    std::optional<QString> reason;
    std::optional<uint> flags;
};

/// login1's inhibitors, a(ssssuu), that block something, without those of this process.
[[nodiscard]] std::vector<Inhibitor> loginInhibitors(const QDBusMessage& reply);

/// login1's sessions, a(susso).
[[nodiscard]] std::vector<LoginSession> loginSessions(const QDBusMessage& reply);

/// The inhibitors at Plasma's power manager, a(ss).
[[nodiscard]] std::vector<Inhibitor> plasmaInhibitors(const QDBusMessage& reply);

/// None if it has gone meanwhile, is this program's own, or is irrelevant.
[[nodiscard]] std::optional<Inhibitor> inhibitorOf(const HeldInhibitor& held);

/// Adds these sessions to the account, from the point of view of this program's user.
void countSessions(const std::vector<LoginSession>& sessions, SessionAccount& account);

} // namespace velmorquit
