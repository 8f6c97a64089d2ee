#pragma once

#include "Remote/StatusJson.h"

namespace velmorquit::remote {

/// What comes back of a command that isn't `status`. Each has some of these only.
struct Answer {
    /// Who was asked to quit; none in an answer that says nothing of it.
    std::optional<std::vector<Application>> asked{};
    std::vector<Application> notAsked{}; ///< with the reason
    std::vector<std::string> refused{};  ///< names of those that the system protects
    std::string text{};                  ///< for a person; may have lines
};

/// An action that can be asked for from outside.
struct PublishedAction {
    std::string name;
    std::string title;
    std::vector<std::string> parameters; ///< their names
};

/// What `quitAll` answers.
[[nodiscard]] Json encodeAsked(const std::vector<Application>& asked, PowerAction then);
/// What `askAgain` answers.
[[nodiscard]] Json encodeAsked(const std::vector<Application>& asked, std::string_view text);
/// What `quit` answers.
[[nodiscard]] Json encodeAsked(const std::vector<Application>& asked,
                               const std::vector<Application>& notAsked, std::string_view text);
[[nodiscard]] Json encodeForced(const std::vector<Application>& forced,
                                const std::vector<std::string>& refused);
[[nodiscard]] Json encodeText(std::string_view text);
/// Lists the actions, each as an object that has at least these fields.
[[nodiscard]] Json encodeAction(std::string_view name, std::string_view title);
[[nodiscard]] Json encodeActions(Json list);

/// What is said when nothing follows a run any more.
[[nodiscard]] std::string givenUpText();

/// Of any answer.
[[nodiscard]] Answer decodeAnswer(const Json& json);
[[nodiscard]] std::vector<PublishedAction> decodeActions(const Json& json);

} // namespace velmorquit::remote
