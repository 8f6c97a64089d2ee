#pragma once

#include "Services/QuitController/QuitController.h"

#include <QWidget>

namespace velmorquit {

class Chip;
class Formats;
class Label;
class SymbolLabel;

/// What else a run may do: a backup, an eject, and later rather than now.
class ExtrasRow : public QWidget {
public:
    ExtrasRow(QuitController& controller, const Formats& formats, QWidget* parent = nullptr);

    void render(bool showsScheduler);

    /// The chip for a run later was pressed.
    std::function<void()> onToggleScheduler;

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;

private:
    void renderLastBackup();

    QuitController& controller_;
    const Formats& formats_;
    Chip* backup_;
    Chip* eject_;
    Chip* scheduler_;
    QWidget* lastBackup_;
    SymbolLabel* lastBackupSymbol_;
    Label* lastBackupText_;
    Handle ageing_;
};

} // namespace velmorquit
