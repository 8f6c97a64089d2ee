#include "Views/QuickMenuView.h"

#include "Theme/Symbols.h"

#include <QColor>
#include <QKeySequence>
#include <QPalette>
#include <QShortcut>

#include <algorithm>
#include <chrono>
#include <utility>

namespace velmorquit {

namespace {

/// The longest that anybody is taken to have such a menu open.
constexpr std::chrono::seconds longestOpen{20};

struct SymbolColours {
    QColor usual;
    QColor selected;
};

/// Neither light nor dark: nobody tells the colours of a menu that the desktop draws.
constexpr SymbolColours anyMenu{QColor(0x80, 0x80, 0x88), QColor(0x80, 0x80, 0x88)};

// An ampersand would underline what follows it.
QString titleOf(const QuickMenuEntry& entry) {
    return QString::fromStdString(entry.title).replace(QLatin1Char('&'), QLatin1String("&&"));
}

bool isSameLine(const QuickMenuEntry& one, const QuickMenuEntry& other) {
    return one.command == other.command && one.then == other.then;
}

void addEntries(QMenu& menu, const QuickMenu& entries, const SymbolColours& colours,
                const QuickMenuChoice& onChoose) {
    for (const QuickMenuEntry& entry : entries) {
        if (entry.command == QuickMenuEntry::Command::none) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(titleOf(entry));
        action->setEnabled(entry.isEnabled);
        if (!entry.symbol.empty())
            action->setIcon(Symbols::icon(QString::fromStdString(entry.symbol), colours.usual,
                                          colours.selected));
        if (entry.key != 0) {
            action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(entry.key)));
            action->setShortcutVisibleInContextMenu(true);
        }
        QObject::connect(action, &QAction::triggered, &menu,
                         [entry, onChoose] { onChoose(entry); });
    }
}

} // namespace

std::unique_ptr<QMenu> makeMenu(const QuickMenu& entries, const QuickMenuChoice& onChoose) {
    auto menu = std::make_unique<QMenu>();
    const QPalette palette = menu->palette();
    addEntries(*menu, entries,
               {palette.color(QPalette::Text), palette.color(QPalette::HighlightedText)}, onChoose);
    // The keys of actions work only where a window has them.
    for (QAction* action : menu->actions()) {
        if (action->shortcut().isEmpty())
            continue;
        auto* key = new QShortcut(action->shortcut(), menu.get());
        QObject::connect(key, &QShortcut::activated, action, [menu = menu.get(), action] {
            menu->close();
            action->trigger();
        });
    }
    return menu;
}

KeptMenu::KeptMenu(QuickMenuChoice onChoose) : onChoose_(std::move(onChoose)) {
    open_.setSingleShot(true);
    QObject::connect(&menu_, &QMenu::aboutToShow, &open_, [this] {
        open_.start(longestOpen);
        if (onOpen)
            onOpen();
    });
    // In a later turn: the entry that was chosen is still being told.
    const auto close = [this] { open_.start(0); };
    QObject::connect(&menu_, &QMenu::aboutToHide, &open_, close);
    QObject::connect(&menu_, &QMenu::triggered, &open_, close);
    QObject::connect(&open_, &QTimer::timeout, &open_, [this] {
        if (isOutdated_)
            rebuild();
    });
}

void KeptMenu::setEntries(const QuickMenu& entries) {
    const bool hasSameLines = !isOutdated_ && std::ranges::equal(entries, entries_, isSameLine);
    entries_ = entries;
    if (!hasSameLines) {
        isOutdated_ = true;
        if (!open_.isActive())
            rebuild();
        return;
    }
    const QList<QAction*> actions = menu_.actions();
    for (qsizetype line = 0; line < actions.size(); ++line) {
        const QuickMenuEntry& entry = entries_.at(static_cast<std::size_t>(line));
        actions[line]->setText(titleOf(entry));
        actions[line]->setEnabled(entry.isEnabled);
    }
}

void KeptMenu::rebuild() {
    isOutdated_ = false;
    menu_.clear();
    addEntries(menu_, entries_, anyMenu, onChoose_);
}

} // namespace velmorquit
