#pragma once

#include "Platform/LoginWindow.h"
#include "Platform/RemoteCommands.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <optional>

namespace velmorquit {

/// What other processes hear of the session's end, and can do about it.
///
/// Verb: `anyway LIST` (the user's word that it is to come over the obstacles of that list).
/// Change: `ending`, with the field `ending` as `describe` gives it.
class RemoteEnd {
public:
    using Json = nlohmann::ordered_json;

    RemoteEnd(LoginWindow& loginWindow, std::function<void(const Json&)> announce);

    /// None when the verb is another one.
    [[nodiscard]] std::optional<RemoteAnswer> answer(const RemoteCommand& command);

    /// How far it has come, null when nobody asked for it: `stage` (`waiting`, `naming`,
    /// `underWay`, `refused`, `failed`), `then`, `text` for a person, the `obstacles` with `kind`
    /// and `name`; where it can come over these, `list` with the `question` that is to be asked.
    [[nodiscard]] Json describe() const;

    /// What is to be known before asking for it, for a person; null when there is nothing.
    [[nodiscard]] Json limits() const;

private:
    LoginWindow& loginWindow_;
    Handle watching_;
};

} // namespace velmorquit
