#pragma once

#include "Services/QuitController/QuitController.h"

#include <vector>

namespace velmorquit {

/// Asks only some of the open applications to quit. The user has named them, so excluded ones too.
/// This is not a run: no phase begins, nothing follows, and nothing can be reopened afterwards.
class AskSome {
public:
    struct Result {
        struct NotAsked {
            OpenApp app;
            StayReason why = StayReason::cannotBeAsked;
        };
        std::vector<OpenApp> asked;
        std::vector<NotAsked> notAsked;
    };

    explicit AskSome(const QuitController& controller) : controller_(controller) {}

    /// Asks each of them that can be asked, without waiting for any. Asks nobody while a run is in
    /// progress: it has already asked them, and would count these as its own.
    [[nodiscard]] Result ask(const std::vector<OpenApp>& apps) const;

private:
    const QuitController& controller_;
};

} // namespace velmorquit
