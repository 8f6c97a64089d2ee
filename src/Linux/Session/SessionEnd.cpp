#include "Linux/Session/SessionEnd.h"

#include <utility>

namespace velmorquit {

namespace {

std::string logName(LoginRequest request) {
    switch (request) {
    case LoginRequest::shutDown:
        return "spegnimento";
    case LoginRequest::restart:
        return "riavvio";
    case LoginRequest::logOut:
        break;
    }
    return "chiusura della sessione";
}

std::vector<std::string>
namesOf(const std::vector<std::shared_ptr<RunningApplication>>& applications) {
    std::vector<std::string> names;
    for (const auto& application : applications) {
        const auto name = application->localizedName();
        names.push_back(name ? *name : application->bundleIdentifier().value_or("App"));
    }
    return names;
}

std::string joined(const std::vector<std::string>& names) {
    std::string text;
    for (const std::string& name : names)
        text += (text.empty() ? "" : ", ") + name;
    return text;
}

} // namespace

SessionEnd::SessionEnd(const Surroundings& surroundings)
    : surroundings_(surroundings), applications_(surroundings.workspace, surroundings.ownProcess) {
    surroundings_.service.onAnswered = [this](const auto& failure) { hear(failure); };
    surroundings_.notice.onCancel = [this] { cancel(); };
}

SessionEnd::~SessionEnd() {
    cancel();
    surroundings_.service.onAnswered = nullptr;
    surroundings_.notice.onCancel = nullptr;
}

std::optional<std::string> SessionEnd::request(LoginRequest request) {
    if (underWay_)
        return logName(*underWay_) + " già in corso";
    if (const auto obstacle = surroundings_.service.obstacle(request, EndForm::direct))
        return obstacle;
    if (waiting_.isActive())
        applications_.askAnew();
    told_.clear();
    surroundings_.notice.withdraw();
    waiting_ = waitAndEnd(request);
    return std::nullopt;
}

bool SessionEnd::cancel() {
    if (!waiting_.isActive())
        return false;
    waiting_.cancel();
    applications_.forget();
    surroundings_.notice.withdraw();
    return true;
}

Task SessionEnd::waitAndEnd(LoginRequest request) {
    const Uptime begin = surroundings_.loop.uptime();
    for (;;) {
        const Uptime now = surroundings_.loop.uptime();
        const OpenApplications::StillOpen open = applications_.ask(now);
        if (open.applications.empty() && !open.areOthersEnding)
            break;
        if (!open.applications.empty() && now - begin >= limit) {
            giveUp(request, open.applications);
            co_return;
        }
        if (now - begin >= noticeDelay)
            tellWaiting(request, open.applications);
        co_await sleep(pollInterval);
    }
    carryOut(request);
}

// Each new text may come up before the user's eyes again, so there is one only when it differs.
void SessionEnd::tellWaiting(LoginRequest request, const Applications& open) {
    std::vector<std::string> names = namesOf(open);
    if (names.empty() || names == told_)
        return;
    told_ = std::move(names);
    surroundings_.notice.showWaiting(request, told_);
}

void SessionEnd::giveUp(LoginRequest request, const Applications& open) {
    applications_.forget();
    const std::vector<std::string> names = namesOf(open);
    surroundings_.log.write("Velmor Quit: " + logName(request) + ": rinuncio, restano aperte " +
                            joined(names));
    surroundings_.notice.showGivenUp(request, names);
}

void SessionEnd::carryOut(LoginRequest request) {
    applications_.forget();
    surroundings_.notice.withdraw();
    underWay_ = request;
    surroundings_.service.carryOut(request, EndForm::direct);
}

void SessionEnd::hear(const std::optional<std::string>& failure) {
    const auto request = std::exchange(underWay_, std::nullopt);
    if (!request || !failure)
        return;
    surroundings_.log.write("Velmor Quit: " + logName(*request) + ": " + *failure);
    surroundings_.notice.showFailure(*request);
}

} // namespace velmorquit
