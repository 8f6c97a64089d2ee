#include "Services/Remote/ChangeFeed.h"

#include "Platform/RemoteCommands.h"

#include <algorithm>
#include <utility>

namespace velmorquit {

namespace {

namespace changes = remote::changes;

bool holds(const std::vector<OpenApp>& apps, const OpenApp& wanted) {
    return std::ranges::any_of(apps, [&](const OpenApp& app) { return app.app == wanted.app; });
}

} // namespace

ChangeFeed::ChangeFeed(QuitController& controller, const Desktop& desktop,
                       const StatusSource& source)
    : controller_(controller), remote_(desktop.remote), source_(source),
      knownApps_(controller.apps), knownExclusions_(controller.excluded) {
    follow(desktop);
}

void ChangeFeed::follow(const Desktop& desktop) {
    const auto subscribe = [this](auto& field, auto told) {
        subscriptions_.push_back(field.subscribe(std::move(told)));
    };
    subscribe(controller_.schedule, [this] { announceSchedule(); });
    subscribe(controller_.awaitingConfirmation, [this] { announceSchedule(); });
    subscribe(controller_.scheduleNote, [this] {
        if (const auto& note = controller_.scheduleNote.get())
            announce(changes::ScheduleNote{*note});
    });
    subscribe(desktop.loginWindow.state,
              [this] { announce(changes::EndingState{source_.ending()}); });
    subscribe(controller_.apps, [this] { announceApps(); });
    subscribe(controller_.excluded, [this] { announceExclusions(); });
    subscribe(controller_.stubborn, [this] { announceStubborn(); });
    subscribe(controller_.stayReasons, [this] { announceStubborn(); });
    subscribe(controller_.phase, [this] { announce(changes::Run{source_.run()}); });
    subscriptions_.push_back(
        controller_.hearEvents([this](const Event& event) { announce(changes::Happened{event}); }));
    subscriptions_.push_back(controller_.hearCalls([this] { announceAttention(); }));
    subscriptions_.push_back(desktop.workspace.observe([this](const WorkspaceChanges& happened) {
        if (hasAnyOf(happened, {WorkspaceEvent::terminated}))
            announceEnds();
    }));
}

void ChangeFeed::announceSchedule() {
    auto now = source_.schedule();
    if (now == knownSchedule_)
        return;
    knownSchedule_ = std::move(now);
    announce(changes::Scheduled{knownSchedule_});
}

/// Tells how soon a scheduled run begins.
void ChangeFeed::announceAttention() {
    const auto& schedule = controller_.schedule.get();
    if (!schedule)
        return;
    const auto left = schedule->date - controller_.mainLoop().now();
    const std::int64_t whole = std::chrono::ceil<std::chrono::seconds>(left).count();
    announce(changes::Attention{std::max<std::int64_t>(whole, 0)});
}

void ChangeFeed::announceApps() {
    const std::vector<OpenApp> before = std::exchange(knownApps_, controller_.apps);
    for (const OpenApp& app : before) {
        if (holds(knownApps_, app))
            continue;
        if (app.app->isTerminated()) {
            announce(changes::Closed{source_.application(app)});
        } else {
            announce(changes::Windowless{source_.application(app)});
            windowless_.push_back(app);
        }
    }
    for (const OpenApp& app : knownApps_) {
        if (holds(before, app))
            continue;
        announce(changes::Opened{source_.application(app)});
        std::erase_if(windowless_, [&](const OpenApp& one) { return one.app == app.app; });
    }
}

/// When one of these ends, the list of open applications no longer changes.
void ChangeFeed::announceEnds() {
    for (const OpenApp& app : windowless_) {
        if (app.app->isTerminated())
            announce(changes::Closed{source_.application(app)});
    }
    std::erase_if(windowless_, [](const OpenApp& app) { return app.app->isTerminated(); });
}

/// Told once, both for a change of the list and for new reasons.
void ChangeFeed::announceStubborn() {
    auto stubborn = source_.stubborn();
    if (stubborn == knownStubborn_)
        return;
    knownStubborn_ = std::move(stubborn);
    announce(changes::Stubborn{knownStubborn_});
}

void ChangeFeed::announceExclusions() {
    const std::set<std::string> before = std::exchange(knownExclusions_, controller_.excluded);
    for (const std::string& key : before) {
        if (!knownExclusions_.contains(key))
            announce(changes::Included{key});
    }
    for (const std::string& key : knownExclusions_) {
        if (!before.contains(key))
            announce(changes::Excluded{key});
    }
}

void ChangeFeed::announce(const remote::Change& change) {
    remote_.announce(remote::textOf(remote::encode(change)));
}

} // namespace velmorquit
