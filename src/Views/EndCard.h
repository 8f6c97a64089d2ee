#pragma once

#include "Platform/LoginWindow.h"
#include "Theme/GlassCard.h"

#include <functional>

namespace velmorquit {

class Label;
class PrimaryButton;

/// The session is about to end, or didn't: what it waits for, and what the user can do about it.
class EndCard : public GlassCard {
public:
    /// How long the question has to have been there before its answer counts.
    static constexpr Duration readingTime = 800ms;

    EndCard(MainLoop& loop, LoginWindow& loginWindow, QWidget* parent = nullptr);

    void render();

    /// What the button that cancels does; until it is set, it cancels the request alone.
    std::function<void()> onCancel;

private:
    void pressAnyway();

    MainLoop& loop_;
    LoginWindow& loginWindow_;
    Label* title_;
    Label* text_;
    PrimaryButton* cancel_;
    PrimaryButton* anyway_;
    /// The user is being asked whether it is to come over the obstacles of that list.
    bool isAsking_ = false;
    std::uint64_t askedList_ = 0;
    Uptime askedAt_;
};

} // namespace velmorquit
