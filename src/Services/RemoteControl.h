#pragma once

#include "Platform/RemoteCommands.h"
#include "Services/CallerQuestion.h"
#include "Services/QuitController/QuitController.h"
#include "Services/RemoteEnd.h"
#include "Services/RemoteSchedule.h"

#include <nlohmann/json.hpp>

#include <functional>
#include <set>
#include <string>
#include <vector>

namespace velmorquit {

/// What other processes of the user can do with the controller and hear of it.
///
/// Verbs: `status`, `quitAll [none|shutDown|restart|logOut]`, `force`, `askAgain [NAME]`, `leave`,
/// `exclude NAME`, `include NAME`, `backup skip|cancel|continue|stop`, `eject`, `reopen` and
/// `forget` (what the last run closed), `show [TOKEN]`, and those of `RemoteSchedule` and
/// `RemoteEnd`; those that are about a run are taken where `RunAnswers` says. Changes are
/// announced as objects with a field `change`: `phase`, `stubborn`, `opened`, `closed`,
/// `windowless` (it lives on), `excluded`, `included`, `event`. A stubborn application has a
/// `reason`: `asking`, `windowless`, `inTray`, `cannotBeAsked`, `busyTerminal`, `notResponding`, or
/// null when nothing is known.
class RemoteControl {
public:
    /// What it is handed outlives it.
    RemoteControl(QuitController& controller, ActionRunner& actions, const Desktop& desktop);

    /// The part that is about the schedule and the published actions.
    [[nodiscard]] RemoteSchedule& schedule() { return schedule_; }

    /// Where the user is asked about what programs in a sandbox want.
    [[nodiscard]] CallerQuestion& callerQuestion() { return callerQuestion_; }

    /// Shows the program to its user. The token lets a window come to the front; it may be empty.
    std::function<void(const std::string& activationToken)> onShow;

private:
    using Json = nlohmann::ordered_json;

    RemoteAnswer answer(const RemoteCommand& command);
    /// Does what the user has agreed to. Whoever wanted it has its answer already.
    [[nodiscard]] std::string situation() const;
    void perform(RemoteCommand command, const std::string& seen);
    RemoteAnswer carryOut(const RemoteCommand& command);
    [[nodiscard]] RemoteAnswer status();
    RemoteAnswer quitAll(const std::vector<std::string>& arguments);
    RemoteAnswer force();
    RemoteAnswer askAgain(const std::vector<std::string>& name);
    RemoteAnswer leave();
    RemoteAnswer backup(const std::string& word);
    RemoteAnswer eject();
    RemoteAnswer reopen();
    RemoteAnswer forget();
    [[nodiscard]] Json describeDrives() const;
    [[nodiscard]] static Json describeSaved(const std::vector<SavedApp>& apps);
    RemoteAnswer setExcluded(const std::string& name, bool isExcluded);
    RemoteAnswer includeShown(const std::string& name);

    [[nodiscard]] static std::vector<OpenApp> named(const std::string& name,
                                                    const std::vector<OpenApp>& apps);
    [[nodiscard]] Json describe(const OpenApp& app) const;
    [[nodiscard]] Json describeAll(const std::vector<OpenApp>& apps) const;
    [[nodiscard]] Json describeStubborn() const;
    [[nodiscard]] Json describePhase() const;

    void announceChanges();
    void announceApps();
    void announceEnds();
    void announceStubborn();
    void announceExclusions();
    void announce(const Event& event);
    void announce(const Json& change);

    QuitController& controller_;
    RemoteCommands& remote_;
    const LoginWindow& loginWindow_;
    RemoteSchedule schedule_;
    RemoteEnd end_;
    CallerQuestion callerQuestion_;
    std::vector<OpenApp> knownApps_;
    /// Those told as windowless, whose end nobody has heard of yet.
    std::vector<OpenApp> windowless_;
    Json knownStubborn_ = Json::array();
    std::set<std::string> knownExclusions_;
    std::vector<Handle> subscriptions_;
};

} // namespace velmorquit
