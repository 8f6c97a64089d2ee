#include "Services/RemoteEnd.h"

#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"
#include "Texts/Shown.h"

#include <array>
#include <string>
#include <utility>

namespace velmorquit {

namespace {

const char* rawValue(LoginRequest request) {
    static constexpr std::array names{"shutDown", "restart", "logOut"};
    return names.at(static_cast<std::size_t>(request));
}

const char* rawValue(EndState::Stage stage) {
    static constexpr std::array names{"none", "waiting", "naming", "underWay", "refused", "failed"};
    return names.at(static_cast<std::size_t>(stage));
}

const char* rawValue(EndObstacle::Kind kind) {
    static constexpr std::array names{"window",    "unaskable", "question",      "work",
                                      "inhibitor", "otherUser", "secondSession", "slept",
                                      "unseen",    "unknown",   "tray",          "job"};
    return names.at(static_cast<std::size_t>(kind));
}

} // namespace

RemoteEnd::RemoteEnd(LoginWindow& loginWindow, std::function<void(const Json&)> announce)
    : loginWindow_(loginWindow) {
    watching_ = loginWindow_.state.subscribe([this, announce = std::move(announce)] {
        announce({{"change", "ending"}, {"ending", describe()}});
    });
}

std::optional<RemoteAnswer> RemoteEnd::answer(const RemoteCommand& command) {
    if (command.verb != "anyway" || command.arguments.size() != 1)
        return std::nullopt;
    const EndState& state = loginWindow_.state;
    const bool isMeant = std::to_string(state.list) == command.arguments.front();
    if (!isMeant || !loginWindow_.endAnyway(state.list))
        return RemoteAnswer{RemoteAnswer::Status::refused,
                            localized("Ciò che resta aperto è cambiato: non faccio niente.")};
    return RemoteAnswer{RemoteAnswer::Status::done, "{}"};
}

RemoteEnd::Json RemoteEnd::describe() const {
    const EndState& state = loginWindow_.state;
    if (state.stage == EndState::Stage::none)
        return {};
    Json obstacles = Json::array();
    for (const EndObstacle& obstacle : state.obstacles)
        obstacles.push_back(
            {{"kind", rawValue(obstacle.kind)}, {"name", shownName(obstacle.name)}});
    Json json{{"stage", rawValue(state.stage)},
              {"then", rawValue(state.request)},
              {"text", EndTexts::line(state)},
              {"obstacles", std::move(obstacles)},
              {"list", Json()}};
    if (state.canBeForced) {
        json["list"] = std::to_string(state.list);
        json["question"] =
            EndTexts::anywayText(state) + ' ' + EndTexts::anywayQuestion(state.request);
    }
    return json;
}

RemoteEnd::Json RemoteEnd::limits() const {
    const std::string text = EndTexts::outlook(loginWindow_.outlook(LoginRequest::shutDown));
    return text.empty() ? Json() : Json(text);
}

} // namespace velmorquit
