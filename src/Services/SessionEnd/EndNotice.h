#pragma once

#include "Loop/MainLoop.h"
#include "Platform/LoginWindow.h"
#include "Platform/Notice.h"
#include "Services/SessionEnd/AnywayQuestion.h"

namespace velmorquit {

/// Tells the user by a notice of the desktop's what the end of the session waits for, and why it
/// didn't come. There the user can cancel it, or have it come anyway.
class EndNotice {
public:
    /// What is over by then is not worth a notice, unless it can't be over by itself.
    static constexpr Duration delay = 1s;
    /// How long the question has to have been there before its answer counts. A notice that takes
    /// another's place comes to the screen a while after it was sent.
    static constexpr Duration readingTime = 1500ms;

    /// `notice` is its own to listen to; all outlive it.
    EndNotice(MainLoop& loop, LoginWindow& loginWindow, Notice& notice);
    EndNotice(const EndNotice&) = delete;
    EndNotice& operator=(const EndNotice&) = delete;
    ~EndNotice();

    /// What the button that cancels does; until it is set, it cancels the request alone.
    std::function<void()> onCancel;
    /// There is something to answer, and no notice can be answered. Called once in a request.
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
    /// The user has not been shown the panel because of the present request.
    bool isPanelDue_ = true;
    Handle telling_;
    Handle following_;
};

} // namespace velmorquit
