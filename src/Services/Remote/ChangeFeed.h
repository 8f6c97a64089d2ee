#pragma once

#include "Remote/ChangeJson.h"
#include "Services/QuitController/QuitController.h"
#include "Services/Remote/StatusSource.h"

#include <set>
#include <vector>

namespace velmorquit {

/// Tells other processes what changes, each change once.
class ChangeFeed {
public:
    /// The arguments must outlive it.
    ChangeFeed(QuitController& controller, const Desktop& desktop, const StatusSource& source);

private:
    void announce(const remote::Change& change);
    void follow(const Desktop& desktop);
    void announceSchedule();
    void announceAttention();
    void announceApps();
    void announceEnds();
    void announceStubborn();
    void announceExclusions();

    QuitController& controller_;
    RemoteCommands& remote_;
    const StatusSource& source_;
    std::vector<OpenApp> knownApps_;
    /// Those reported as windowless, whose end has not been reported yet.
    std::vector<OpenApp> windowless_;
    std::vector<remote::Application> knownStubborn_;
    std::set<std::string> knownExclusions_;
    std::optional<remote::Schedule> knownSchedule_;
    std::vector<Handle> subscriptions_;
};

} // namespace velmorquit
