#include "Services/SessionEnd/SessionEnd.h"

#include "Services/SessionEnd/EndLog.h"
#include "Services/SessionEnd/EndTexts.h"
#include "Texts/Localized.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

namespace {

bool isOfWindows(const EndObstacle& obstacle) {
    using Kind = EndObstacle::Kind;
    return obstacle.kind == Kind::window || obstacle.kind == Kind::unaskable ||
           obstacle.kind == Kind::question;
}

bool canBePassedOver(const EndObstacle& obstacle) {
    using Kind = EndObstacle::Kind;
    return isOfWindows(obstacle) || obstacle.kind == Kind::work || obstacle.kind == Kind::inhibitor;
}

/// The description of a program's work may change while the obstacle remains the same. Inhibitors
/// are told apart by it, since nothing else is known of them.
bool isSame(const EndObstacle& one, const EndObstacle& other) {
    return one.kind == other.kind && one.name == other.name && one.process == other.process &&
           one.windows == other.windows &&
           (one.kind != EndObstacle::Kind::inhibitor || one.detail == other.detail);
}

bool holds(const std::vector<EndObstacle>& list, const EndObstacle& wanted) {
    return std::ranges::any_of(list,
                               [&](const EndObstacle& known) { return isSame(known, wanted); });
}

/// For a user who reads the list, equal names mean the same obstacle.
bool isNamed(const std::vector<EndObstacle>& list, const EndObstacle& wanted) {
    return std::ranges::any_of(list, [&](const EndObstacle& known) {
        return known.kind == wanted.kind && known.name == wanted.name;
    });
}

} // namespace

SessionEnd::SessionEnd(const Surroundings& surroundings)
    : LoginWindow(surroundings.loop), surroundings_(surroundings),
      work_(surroundings.windows, surroundings.processes) {
    surroundings_.service.onAnswered = [this](const auto& failure) { hear(failure); };
    watching_ = surroundings_.windows.observe([this] { forgetRefusal(); });
    waking_ = surroundings_.loop.observe(ClockEvent::woke, [this] { hearWakeUp(); });
}

SessionEnd::~SessionEnd() { surroundings_.service.onAnswered = nullptr; }

std::optional<std::string> SessionEnd::request(LoginRequest request, const EndTerms& terms) {
    if (underWay_)
        return EndLog::name(*underWay_) + " già in corso";
    const auto obstacle = surroundings_.service.obstacle(request, EndForm::direct);
    if (obstacle && form() == EndForm::direct) {
        if (!waiting_.isActive()) {
            wait_ = {.request = request, .terms = terms, .begin = {}};
            publish(EndState::Stage::failed, {});
        }
        return obstacle;
    }
    if (waiting_.isActive())
        work_.askAnew();
    pardoned_.clear();
    begin(request, terms);
    return std::nullopt;
}

void SessionEnd::announce(LoginRequest request) {
    if (waiting_.isActive() || underWay_)
        return;
    wait_ = {.request = request, .terms = {}, .begin = {}};
    publish(EndState::Stage::waiting, {});
}

Duration SessionEnd::ahead() const {
    return surroundings_.loop.now().time_since_epoch() - surroundings_.loop.uptime().sinceStart;
}

// A user who wakes the computer hours later doesn't expect it to be switched off.
void SessionEnd::hearWakeUp() {
    if (!waiting_.isActive())
        return;
    wait_.namedSince.reset();
    if (ahead() - wait_.ahead <= mostSleep)
        return;
    waiting_.cancel();
    asking_.reset();
    refuse({{Kind::slept}});
}

void SessionEnd::begin(LoginRequest request, const EndTerms& terms) {
    wait_ = {
        .request = request, .terms = terms, .begin = surroundings_.loop.uptime(), .ahead = ahead()};
    telling_.reset();
    sinceInput_.reset();
    awake_ = surroundings_.sleepHold.begin(localized("Velmor Quit aspetta le app"));
    publish(EndState::Stage::waiting, {});
    waiting_ = waitAndEnd();
}

bool SessionEnd::cancel() {
    const bool isWaiting = waiting_.isActive();
    if (!underWay_)
        end();
    return isWaiting;
}

/// Stops waiting, and shows nothing any more.
void SessionEnd::end() {
    waiting_.cancel();
    asking_.reset();
    awake_.reset();
    pardoned_.clear();
    work_.forget();
    become({});
}

bool SessionEnd::endAnyway(std::uint64_t list) {
    const EndState shown = state;
    if (!shown.canBeForced || shown.list != list)
        return false;
    pardoned_ = shown.obstacles;
    if (!waiting_.isActive())
        begin(shown.request, {});
    return true;
}

EndForm SessionEnd::form() const {
    return surroundings_.workspace.sight() == Sight::all ? EndForm::direct : EndForm::asking;
}

EndOutlook SessionEnd::outlook(LoginRequest request) const {
    if (form() == EndForm::direct)
        return EndOutlook::direct;
    return surroundings_.service.obstacle(request, EndForm::asking) ? EndOutlook::refused
                                                                    : EndOutlook::asks;
}

// The answers of others take a while, and the windows may have changed by then: so windows are
// checked last, in the same turn in which the system is told.
Task<> SessionEnd::waitAndEnd() {
    for (bool isAccountWanted = true;;) {
        const Uptime now = surroundings_.loop.uptime();
        const bool isAccountRead =
            isAccountWanted || !wait_.readAt || now - *wait_.readAt >= accountInterval;
        if (isAccountRead) {
            accountAnswer_.clear();
            asking_ = surroundings_.registry.read(
                [this](const auto& account) { accountAnswer_.give(account); });
            const std::optional<SessionAccount> account = co_await accountAnswer_;
            account_ = account;
            wait_.readAt = surroundings_.loop.uptime();
            if (form() == EndForm::asking) {
                inputAnswer_.clear();
                asking_ = surroundings_.input.sinceLastInput(
                    [this](std::optional<Duration> time) { inputAnswer_.give(time); });
                const std::optional<Duration> time = co_await inputAnswer_;
                sinceInput_ = time;
                wait_.isInputRead = true;
            }
        }
        const Next next = consider(isAccountRead);
        if (next == Next::refuse) {
            refuse(std::exchange(refusal_, {}));
            co_return;
        }
        // Only if no part of what was seen is older than another.
        if (next == Next::carryOut && form() == wait_.form) {
            carryOut();
            co_return;
        }
        isAccountWanted = next != Next::wait;
        if (!isAccountWanted)
            co_await sleep(pollInterval);
    }
}

/// Lasting obstacles are checked before any window is asked to close.
SessionEnd::Next SessionEnd::consider(bool isAccountFresh) {
    if (const Next next = considerAccount(); next != Next::carryOut)
        return next;
    if (const Next next = considerSight(); next != Next::carryOut)
        return next;
    return considerWork(isAccountFresh);
}

SessionEnd::Next SessionEnd::considerAccount() {
    if (!account_ || wait_.request == LoginRequest::logOut)
        return Next::carryOut;
    refusal_.clear();
    for (const std::string& user : account_->otherUsers)
        refusal_.push_back({Kind::otherUser, user});
    if (account_->hasSecondSession)
        refusal_.push_back({Kind::secondSession});
    return refusal_.empty() ? Next::carryOut : Next::refuse;
}

SessionEnd::Next SessionEnd::considerSight() {
    const Uptime now = surroundings_.loop.uptime();
    wait_.form = form();
    if (wait_.form == EndForm::direct) {
        if (std::exchange(wait_.blindSince, std::nullopt))
            wait_.sightSince = now;
        wait_.isInputRead = false;
        return Next::carryOut;
    }
    if (!wait_.blindSince)
        wait_.blindSince = now;
    const bool mayPass = surroundings_.workspace.sight() != Sight::anotherDisplay;
    if (mayPass && now - *wait_.blindSince < blindPatience) {
        publish(EndState::Stage::waiting, {});
        return Next::wait;
    }
    if (!wait_.isInputRead)
        return Next::lookAgain;
    const bool isThere =
        wait_.terms.attendance == Attendance::attended && sinceInput_ && *sinceInput_ <= presence;
    const bool canAsk = !surroundings_.service.obstacle(wait_.request, EndForm::asking).has_value();
    if (isThere && canAsk)
        return Next::carryOut;
    refusal_ = {{Kind::unseen, {}, EndTexts::unseen(canAsk)}};
    return Next::refuse;
}

SessionEnd::Next SessionEnd::considerWork(bool isAccountFresh) {
    const Uptime now = surroundings_.loop.uptime();
    OpenWork::Found found = work_.ask(now, wait_.request, account_ ? *account_ : SessionAccount{});
    if (!account_ || !surroundings_.service.isReady())
        found.obstacles.push_back({Kind::unknown});
    const Obstacles inTheWay = withoutPardoned(found.obstacles);
    const bool areWindows = std::ranges::any_of(inTheWay, [](const EndObstacle& obstacle) {
        return isOfWindows(obstacle) || obstacle.kind == Kind::unknown;
    });
    if (!areWindows)
        wait_.windowsSince.reset();
    else if (!wait_.windowsSince)
        wait_.windowsSince = now;
    const bool isTooLong =
        (areWindows && now - *wait_.windowsSince >= windowLimit) || now - wait_.begin >= limit;
    if (!inTheWay.empty() && isTooLong) {
        refusal_ = found.obstacles;
        return Next::refuse;
    }
    if (!inTheWay.empty()) {
        wait_.named.clear();
        wait_.namedSince.reset();
        publish(EndState::Stage::waiting, found.obstacles);
        return Next::wait;
    }
    if (const Next next = considerMentions(now); next != Next::carryOut)
        return next;
    const bool isSightNew = wait_.sightSince && now - *wait_.sightSince < sightPatience;
    if (found.isSomebodyEnding || isSightNew) {
        publish(EndState::Stage::waiting, {});
        return Next::wait;
    }
    return isAccountFresh ? Next::carryOut : Next::lookAgain;
}

/// Mentions that come later are named for the full time as well.
SessionEnd::Next SessionEnd::considerMentions(Uptime now) {
    // Reading the account anew may take so long that the mentions are due again.
    const bool haveJustLooked = std::exchange(wait_.haveJustLooked, false);
    if (!haveJustLooked && work_.areMentionsDue(now)) {
        work_.lookForMentions(now);
        wait_.haveJustLooked = true;
        return Next::lookAgain;
    }
    const Obstacles& mentions = work_.mentions();
    const bool isLate = wait_.terms.comesLate;
    if (mentions.empty() && !isLate)
        return Next::carryOut;
    bool isNew = !wait_.namedSince;
    for (const EndObstacle& one : mentions) {
        if (isNamed(wait_.named, one))
            continue;
        wait_.named.push_back(one);
        isNew = true;
    }
    const Duration time = isLate ? lateNamingTime : namingTime;
    if (isNew)
        wait_.namedSince = now;
    const Uptime end = *wait_.namedSince + time;
    if (now >= end)
        return Next::carryOut;
    publish(EndState::Stage::naming, mentions, end);
    return Next::wait;
}

SessionEnd::Obstacles SessionEnd::withoutPardoned(const Obstacles& obstacles) const {
    Obstacles rest;
    std::ranges::copy_if(obstacles, std::back_inserter(rest),
                         [this](const EndObstacle& one) { return !holds(pardoned_, one); });
    return rest;
}

void SessionEnd::publish(EndState::Stage stage, Obstacles obstacles, std::optional<Uptime> at) {
    const bool isPassable =
        (stage == EndState::Stage::waiting || stage == EndState::Stage::refused) &&
        !obstacles.empty() && std::ranges::all_of(obstacles, canBePassedOver);
    EndState next{.stage = stage,
                  .request = wait_.request,
                  .obstacles = std::move(obstacles),
                  .at = at,
                  .canBeForced = isPassable && wait_.terms.attendance == Attendance::attended,
                  .list = state->list};
    if (next.obstacles != state->obstacles) {
        next.list = ++lastList_;
        const bool isNaming = stage == EndState::Stage::naming;
        if ((isNaming || stage == EndState::Stage::waiting) && !next.obstacles.empty())
            surroundings_.log.write("Velmor Quit: " + EndLog::name(wait_.request) +
                                    (isNaming ? ": avviso di " : ": aspetto ") +
                                    EndLog::text(next.obstacles));
    }
    become(std::move(next));
}

void SessionEnd::refuse(Obstacles obstacles) {
    surroundings_.log.write("Velmor Quit: " + EndLog::name(wait_.request) +
                            ": rinuncio: " + EndLog::text(obstacles));
    awake_.reset();
    pardoned_.clear();
    work_.forget();
    publish(EndState::Stage::refused, std::move(obstacles));
}

/// A refusal is dropped once the user has closed its windows.
void SessionEnd::forgetRefusal() {
    const EndState& shown = state;
    if (shown.stage != EndState::Stage::refused ||
        !std::ranges::all_of(shown.obstacles, isOfWindows))
        return;
    const std::vector<OpenWindow> open = surroundings_.windows.open();
    const bool isAnyOpen = std::ranges::any_of(open, [&](const OpenWindow& window) {
        return std::ranges::any_of(shown.obstacles, [&](const EndObstacle& obstacle) {
            return std::ranges::count(obstacle.windows, window.id) > 0;
        });
    });
    if (!isAnyOpen)
        end();
}

void SessionEnd::carryOut() {
    const LoginRequest request = wait_.request;
    const EndForm how = wait_.form;
    underWay_ = request;
    awake_.reset();
    pardoned_.clear();
    work_.forget();
    publish(EndState::Stage::underWay, {});
    surroundings_.service.carryOut(request, how);
}

void SessionEnd::hear(const std::optional<std::string>& failure) {
    const auto request = std::exchange(underWay_, std::nullopt);
    if (!request)
        return;
    if (!failure) {
        // The user may have said no to a question that the system asked.
        telling_ = surroundings_.loop.after(underWayTime, [this] {
            if (state->stage == EndState::Stage::underWay)
                become({});
        });
        return;
    }
    surroundings_.log.write("Velmor Quit: " + EndLog::name(*request) + ": " + *failure);
    publish(EndState::Stage::failed, {});
}

} // namespace velmorquit
