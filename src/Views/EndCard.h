#pragma once

#include "Services/SessionEnd/AnywayQuestion.h"
#include "Theme/GlassCard.h"

#include <functional>

namespace velmorquit {

class Label;
class PrimaryButton;

/// The session is about to end, or didn't: what it waits for, and what the user can do about it.
class EndCard : public GlassCard {
public:
    /// How long the question must have been shown before its answer counts.
    static constexpr Duration readingTime = 800ms;

    EndCard(MainLoop& loop, LoginWindow& loginWindow, QWidget* parent = nullptr);

    void render();

    /// Called by the cancel button; until it is set, only the request is cancelled.
    std::function<void()> onCancel;

private:
    void pressAnyway();

    LoginWindow& loginWindow_;
    AnywayQuestion question_;
    Label* title_;
    Label* text_;
    PrimaryButton* cancel_;
    PrimaryButton* anyway_;
};

} // namespace velmorquit
