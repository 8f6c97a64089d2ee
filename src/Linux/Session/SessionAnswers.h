#pragma once

#include "Platform/SessionRegistry.h"

#include <QDBusMessage>
#include <QString>
#include <QVariantMap>

#include <optional>
#include <vector>

namespace velmorquit {

// What those who keep account of sessions answer, and what of it counts. The messages are replies
// with the signatures that are named; none of it waits for anything.

/// A session of login1's.
struct LoginSession {
    uint user = 0;
    QString userName;
    QString path;
    /// Empty while it has not answered, and for one that has gone meanwhile.
    QVariantMap properties;
};

/// An inhibitor of the session manager's: complete when all three have come.
struct HeldInhibitor {
    std::optional<QString> application;
    std::optional<QString> reason;
    std::optional<uint> flags;
};

/// login1's inhibitors, a(ssssuu), that keep something from happening; not those of this process.
[[nodiscard]] std::vector<Inhibitor> loginInhibitors(const QDBusMessage& reply);

/// login1's sessions, a(susso).
[[nodiscard]] std::vector<LoginSession> loginSessions(const QDBusMessage& reply);

/// Those of Plasma's manager of power, a(ss).
[[nodiscard]] std::vector<Inhibitor> plasmaInhibitors(const QDBusMessage& reply);

/// None for one that has gone meanwhile, that is this program's own or that is of no account.
[[nodiscard]] std::optional<Inhibitor> inhibitorOf(const HeldInhibitor& held);

/// Enters into the account what these sessions are to the one who runs this program.
void countSessions(const std::vector<LoginSession>& sessions, SessionAccount& account);

} // namespace velmorquit
