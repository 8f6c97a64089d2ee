#pragma once

#include "Platform/LoginWindow.h"

#include <functional>
#include <string>
#include <vector>

namespace velmorquit {

/// What the user is told while a session waits for its end, or why it didn't come: one notice at a
/// time, a new one in the last one's place. Every operation returns at once; where nobody shows
/// notices, nothing happens.
class EndNotice {
public:
    virtual ~EndNotice() = default;

    /// These applications (one at least) are waited for. The user can cancel here.
    virtual void showWaiting(LoginRequest request, const std::vector<std::string>& names) = 0;
    /// These applications stayed, and so the session does.
    virtual void showGivenUp(LoginRequest request, const std::vector<std::string>& names) = 0;
    /// The system refused, or didn't answer.
    virtual void showFailure(LoginRequest request) = 0;
    /// Takes away what is shown.
    virtual void withdraw() = 0;

    /// Called when the user cancels. May be empty.
    std::function<void()> onCancel;
};

} // namespace velmorquit
