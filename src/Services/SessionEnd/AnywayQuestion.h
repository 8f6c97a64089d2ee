#pragma once

#include "Loop/MainLoop.h"
#include "Platform/LoginWindow.h"

namespace velmorquit {

/// The question whether the session is to end over what stays open, wherever it is put. The first
/// press asks it. A second one counts when the question, with these very names, has been there for
/// long enough to be read: before that it is a double click or bad luck.
class AnywayQuestion {
public:
    /// `readingTime`: from the moment at which it is put to the first answer that counts.
    AnywayQuestion(MainLoop& loop, LoginWindow& loginWindow, Duration readingTime);

    [[nodiscard]] bool isAsked() const { return isAsked_; }

    /// Takes over what the obstacles are now; to be called before they are shown.
    void follow();
    /// Puts it, where there is something that may be passed over.
    void ask();
    void giveUp() { isAsked_ = false; }
    /// Passes over the obstacles that were shown last. Nothing happens when nobody can have read
    /// them, or when there are others by now: it is asked anew.
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
