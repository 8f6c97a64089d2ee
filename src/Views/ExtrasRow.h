#pragma once

#include "Services/QuitController/QuitController.h"

#include <QWidget>

namespace velmorquit {

class Chip;
class Formats;
class Label;
class SymbolLabel;

/// Further options of a run: a backup, ejecting drives, and scheduling it for later.
class ExtrasRow : public QWidget {
public:
    ExtrasRow(QuitController& controller, const Formats& formats, QWidget* parent = nullptr);

    void render(bool showsScheduler);

    /// Called when the chip for scheduling is pressed.
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
