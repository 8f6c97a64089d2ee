#pragma once

#include "Services/QuitController/QuitController.h"

#include <vector>

namespace velmorquit {

/// Asks only some of the open applications to quit, since the user means these: excluded ones too.
/// It is no run: no phase begins, nothing follows, and nothing of it can be reopened.
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

    /// Asks each of them, unless something stands in the way of that; they are not waited for. Asks
    /// nobody while a run is in progress, which has asked already and would count them as its own.
    [[nodiscard]] Result ask(const std::vector<OpenApp>& apps) const;

private:
    const QuitController& controller_;
};

} // namespace velmorquit
