#pragma once

#include "Platform/Time.h"
#include "Platform/Workspace.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace velmorquit {

/// The applications that have to close before the session may end. Each is asked once, and once
/// more when it goes on without windows.
class OpenApplications {
public:
    /// Time for which one is left alone that has closed its windows: most are gone by then.
    static constexpr Duration windowlessPatience = 1s;
    /// Time that it then has to end, once it was asked again. One that stays has nothing open that
    /// the user could lose.
    static constexpr Duration windowlessLimit = 5s;

    struct StillOpen {
        /// Those with windows, or with a question to the user, in the workspace's order.
        std::vector<std::shared_ptr<RunningApplication>> applications;
        /// Whether others have closed their windows, and may end yet.
        bool areOthersEnding = false;
    };

    /// `own` is the process of this program, which is never asked.
    OpenApplications(Workspace& workspace, ProcessId own) : workspace_(workspace), own_(own) {}

    /// Asks those that it is time to ask, and says what is still open.
    StillOpen ask(Uptime now);

    /// Has those with windows asked once more, save those that wait for the user's answer.
    void askAnew();

    /// Forgets who was asked.
    void forget() { asked_.clear(); }

private:
    struct Asked {
        /// Since when it has had neither windows nor a question, or was asked again without any.
        std::optional<Uptime> quietSince;
        bool isAskedAgain = false;
    };

    void askWithWindows(const std::shared_ptr<RunningApplication>& application);
    [[nodiscard]] static bool isBusy(RunningApplication& application, bool wasAsked);
    static bool isEnding(RunningApplication& application, Asked& asked, Uptime now);

    Workspace& workspace_;
    ProcessId own_;
    /// Shared, so that a later application is never taken for one of them.
    std::map<std::shared_ptr<RunningApplication>, Asked> asked_;
};

} // namespace velmorquit
