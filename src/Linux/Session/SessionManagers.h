#pragma once

#include "Platform/LoginWindow.h"

#include <QString>
#include <QVariantList>

#include <array>

namespace velmorquit {

/// A call that a session manager takes.
struct ManagerMethod {
    const char* name = nullptr;
    QVariantList arguments{};
};

/// Where the calls of a session manager are.
struct ManagerCalls {
    /// Whoever takes them; it may have to be started for them.
    QString service{};
    QString path{};
    QString interface{};
    ManagerMethod logOut{};
    ManagerMethod shutDown{};
    ManagerMethod restart{};

    /// One without a name where there is no such call.
    [[nodiscard]] const ManagerMethod& method(LoginRequest request) const;
};

/// A session manager, known by the name that it owns on the session bus.
struct SessionManager {
    QString ownedName{};
    /// What it does without a question.
    ManagerCalls direct{};
    /// What it does after a question of its own.
    ManagerCalls asking{};
    /// The program that asks, of a manager that has no calls for it.
    QString askingProgram{};
};

/// Those that are known.
[[nodiscard]] const std::array<SessionManager, 4>& sessionManagers();

} // namespace velmorquit
