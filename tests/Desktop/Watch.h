#pragma once

#include "support/Child.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace velmorquit {

/// `velmorctl watch`: what the program tells of itself, and when.
class Watch {
public:
    using Clock = std::chrono::steady_clock;

    /// Returns when it is sure to hear all that follows; the program has to be running.
    Watch();

    /// The changes so far, each as a short text: "opened Mousepad", "phase waiting", "phase done
    /// 2", "stubborn Mousepad, XTerm". Windows vanish before their process ends; which of the two
    /// is told depends on how soon it does, so that both are "gone Mousepad".
    const std::vector<std::string>& changes();

    [[nodiscard]] bool hasHeard(const std::string& change) { return timeOf(change).has_value(); }

    /// When the change was told for the first time: not before that it happened. As exact as the
    /// pace at which these functions are called.
    [[nodiscard]] std::optional<Clock::time_point> timeOf(const std::string& change);

private:
    Child command_;
    bool isSure_ = false;
    std::size_t read_ = 0;
    std::vector<std::string> changes_;
    std::vector<Clock::time_point> times_;
};

} // namespace velmorquit
