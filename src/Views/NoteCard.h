#pragma once

#include "Theme/GlassCard.h"

#include <functional>
#include <string>

namespace velmorquit {

class Label;

/// Something that the user should know, until it is put away.
class NoteCard : public GlassCard {
public:
    explicit NoteCard(QWidget* parent = nullptr);

    void render(const std::string& text);

    std::function<void()> onDismiss;

private:
    Label* text_;
};

} // namespace velmorquit
