#pragma once

#include "Loop/MainLoop.h"
#include "Platform/LoginWindow.h"
#include "Platform/Notice.h"
#include "Services/SessionEnd/AnywayQuestion.h"

namespace velmorquit {

/// Tells the user by a desktop notice what the end of the session is waiting for, and why it didn't
/// come. There the user can cancel it, or have it come anyway.
class EndNotice {
public:
    /// A wait that is over sooner needs no notice, unless it can't end by itself.
    static constexpr Duration delay = 1s;
    /// How long the question must have been shown before its answer counts. A notice that replaces
    /// another one reaches the screen a while after it was sent.
    static constexpr Duration readingTime = 1500ms;

    /// Only this object listens to `notice`; all arguments must outlive it.
    EndNotice(MainLoop& loop, LoginWindow& loginWindow, Notice& notice);
    EndNotice(const EndNotice&) = delete;
    EndNotice& operator=(const EndNotice&) = delete;
    ~EndNotice();

    /// Called by the cancel button; until it is set, only the request is cancelled.
    std::function<void()> onCancel;
    /// There is something to answer, and no notice can be answered. Called once per request.
    std::function<void()> onUnanswerable;

private:
    void follow();
    void tell();
    [[nodiscard]] Notice::Content question() const;
    void show(const Notice::Content& content);
    void showAgain();
    void answer(const std::string& button);

    MainLoop& loop_;
    LoginWindow& loginWindow_;
    Notice& notice_;
    Notice::Content shown_;
    bool isShown_ = false;
    AnywayQuestion question_;
    /// The user has not been shown the panel for the present request yet.
    bool isPanelDue_ = true;
    Handle telling_;
    Handle following_;
};

} // namespace velmorquit
