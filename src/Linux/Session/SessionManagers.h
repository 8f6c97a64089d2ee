#pragma once

#include "Platform/LoginWindow.h"

#include <QString>
#include <QVariantList>

#include <array>

namespace velmorquit {

/// A call to a session manager.
struct ManagerMethod {
    const char* name = nullptr;
    QVariantList arguments{};
};

/// The calls of a session manager, and where they go.
struct ManagerCalls {
    /// The service that takes them; it may have to be started for them.
    QString service{};
    QString path{};
    QString interface{};
    ManagerMethod logOut{};
    ManagerMethod shutDown{};
    ManagerMethod restart{};

    /// Without a name where there is no such call.
    [[nodiscard]] const ManagerMethod& method(LoginRequest request) const;
};

/// A session manager, known by the name that it owns on the session bus.
struct SessionManager {
    QString ownedName{};
    /// What it does without asking.
    ManagerCalls direct{};
    /// What it does after asking the user itself.
    ManagerCalls asking{};
    /// The program that asks, for a manager without calls for that.
    QString askingProgram{};
};

/// The known session managers.
[[nodiscard]] const std::array<SessionManager, 4>& sessionManagers();

} // namespace velmorquit
