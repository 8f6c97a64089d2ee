#pragma once

#include "Remote/StatusJson.h"

namespace velmorquit::remote {

/// The answer to a command other than `status`. Each answer has only some of these fields.
struct Answer {
    /// The applications that were asked to quit; none in an answer about something else.
    std::optional<std::vector<Application>> asked{};
    std::vector<Application> notAsked{}; ///< with the reasons
    std::vector<std::string> refused{};  ///< names of those that the system protects
    std::string text{};                  ///< for the user; may have several lines
};

/// An action that can be requested from outside.
struct PublishedAction {
    std::string name;
    std::string title;
    std::vector<std::string> parameters; ///< their names
};

/// The answer to `quitAll`.
[[nodiscard]] Json encodeAsked(const std::vector<Application>& asked, PowerAction then);
/// The answer to `askAgain`.
[[nodiscard]] Json encodeAsked(const std::vector<Application>& asked, std::string_view text);
/// The answer to `quit`.
[[nodiscard]] Json encodeAsked(const std::vector<Application>& asked,
                               const std::vector<Application>& notAsked, std::string_view text);
[[nodiscard]] Json encodeForced(const std::vector<Application>& forced,
                                const std::vector<std::string>& refused);
[[nodiscard]] Json encodeText(std::string_view text);
/// The list of actions; each is an object that has at least these fields.
[[nodiscard]] Json encodeAction(std::string_view name, std::string_view title);
[[nodiscard]] Json encodeActions(Json list);

/// Says that nothing follows the run any more.
[[nodiscard]] std::string givenUpText();

/// Reads any answer.
[[nodiscard]] Answer decodeAnswer(const Json& json);
[[nodiscard]] std::vector<PublishedAction> decodeActions(const Json& json);

} // namespace velmorquit::remote
