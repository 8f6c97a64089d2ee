#include "Model/RawValues.h"

#include <algorithm>
#include <array>

namespace velmorquit {

namespace {

using Stage = EndState::Stage;
using Kind = EndObstacle::Kind;

// In the order of the enumerations.
constexpr std::array<std::string_view, 7> stayReasons{
    "", "asking", "windowless", "cannotBeAsked", "busyTerminal", "notResponding", "inTray"};
constexpr std::array<std::string_view, 4> sights{"all", "noWindowList", "incomplete",
                                                 "anotherDisplay"};
constexpr std::array<std::string_view, 3> requests{"shutDown", "restart", "logOut"};
constexpr std::array<std::string_view, 6> stages{"none",     "waiting", "naming",
                                                 "underWay", "refused", "failed"};
constexpr std::array<std::string_view, 12> kinds{"window",    "unaskable", "question",      "work",
                                                 "inhibitor", "otherUser", "secondSession", "slept",
                                                 "unseen",    "unknown",   "tray",          "job"};

static_assert(static_cast<std::size_t>(StayReason::inTray) == stayReasons.size() - 1);
static_assert(static_cast<std::size_t>(Sight::anotherDisplay) == sights.size() - 1);
static_assert(static_cast<std::size_t>(LoginRequest::logOut) == requests.size() - 1);
static_assert(static_cast<std::size_t>(Stage::failed) == stages.size() - 1);
static_assert(static_cast<std::size_t>(Kind::job) == kinds.size() - 1);

template <class Value, class Names> std::string_view nameOf(Value value, const Names& names) {
    return names.at(static_cast<std::size_t>(value));
}

template <class Value, class Names>
std::optional<Value> named(std::string_view raw, const Names& names) {
    const auto found = std::ranges::find(names, raw);
    if (found == names.end())
        return std::nullopt;
    return static_cast<Value>(found - names.begin());
}

} // namespace

std::string_view rawValue(StayReason reason) { return nameOf(reason, stayReasons); }
StayReason stayReasonFromRaw(std::string_view raw) {
    return named<StayReason>(raw, stayReasons).value_or(StayReason::unknown);
}

std::string_view rawValue(Sight sight) { return nameOf(sight, sights); }
Sight sightFromRaw(std::string_view raw) { return named<Sight>(raw, sights).value_or(Sight::all); }

std::string_view rawValue(LoginRequest request) { return nameOf(request, requests); }
std::optional<LoginRequest> loginRequestFromRaw(std::string_view raw) {
    return named<LoginRequest>(raw, requests);
}

std::string_view rawValue(EndState::Stage stage) { return nameOf(stage, stages); }
EndState::Stage endStageFromRaw(std::string_view raw) {
    return named<Stage>(raw, stages).value_or(Stage::none);
}

std::string_view rawValue(EndObstacle::Kind kind) { return nameOf(kind, kinds); }
EndObstacle::Kind obstacleKindFromRaw(std::string_view raw) {
    return named<Kind>(raw, kinds).value_or(Kind::unknown);
}

} // namespace velmorquit
