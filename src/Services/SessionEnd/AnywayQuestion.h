#pragma once

#include "Loop/MainLoop.h"
#include "Platform/LoginWindow.h"

namespace velmorquit {

/// Asks whether the session may end despite what stays open. The first press asks the question; a
/// second one counts only if the question, with exactly these names, has been shown long enough to
/// be read. An earlier one is a double click or an accident.
class AnywayQuestion {
public:
    /// `readingTime`: how long the question must have been shown before an answer counts.
    AnywayQuestion(MainLoop& loop, LoginWindow& loginWindow, Duration readingTime);

    [[nodiscard]] bool isAsked() const { return isAsked_; }

    /// Takes over the present obstacles; to be called before they are shown.
    void follow();
    /// Asks the question, if there is anything that may be passed over.
    void ask();
    void giveUp() { isAsked_ = false; }
    /// Passes over the obstacles that were shown last. If nobody can have read them yet, or if
    /// there are others by now, the question is asked anew instead.
    void confirm();

private:
    MainLoop& loop_;
    LoginWindow& loginWindow_;
    Duration readingTime_;
    bool isAsked_ = false;
    std::uint64_t list_ = 0;
    Uptime shownAt_;
    Handle following_;
};

} // namespace velmorquit
