#pragma once

#include "Theme/GlassCard.h"

#include <functional>
#include <string>

namespace velmorquit {

class Label;

/// A note for the user, shown until dismissed.
class NoteCard : public GlassCard {
public:
    explicit NoteCard(QWidget* parent = nullptr);

    void render(const std::string& text);

    std::function<void()> onDismiss;

private:
    Label* text_;
};

} // namespace velmorquit
