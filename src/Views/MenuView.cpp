#include "Views/MenuView.h"

#include "Theme/Symbols.h"

#include <QColor>
#include <QKeySequence>
#include <QPalette>
#include <QShortcut>

#include <algorithm>
#include <chrono>

namespace velmorquit {

namespace {

/// The longest time that such a menu is assumed to be open.
constexpr std::chrono::seconds longestOpen{20};

struct SymbolColours {
    QColor usual;
    QColor selected;
};

/// Neither light nor dark: the colours of a menu drawn by the desktop are unknown.
constexpr SymbolColours anyMenu{QColor(0x80, 0x80, 0x88), QColor(0x80, 0x80, 0x88)};

// An ampersand would underline the next letter.
QString titleOf(const MenuEntry& entry) {
    return QString::fromStdString(entry.title).replace(QLatin1Char('&'), QLatin1String("&&"));
}

bool isSameLine(const MenuEntry& one, const MenuEntry& other) {
    return one.id == other.id && one.isChecked.has_value() == other.isChecked.has_value() &&
           one.submenu == other.submenu;
}

void update(QAction& action, const MenuEntry& entry) {
    action.setText(titleOf(entry));
    action.setEnabled(entry.isEnabled);
    action.setCheckable(entry.isChecked.has_value());
    action.setChecked(entry.isChecked.value_or(false));
}

void addEntries(QMenu& menu, const Menu& entries, const SymbolColours& colours) {
    for (const MenuEntry& entry : entries) {
        if (entry.isSeparator()) {
            menu.addSeparator();
            continue;
        }
        QAction* action = menu.addAction(QString());
        update(*action, entry);
        if (!entry.symbol.empty())
            action->setIcon(Symbols::icon(QString::fromStdString(entry.symbol), colours.usual,
                                          colours.selected));
        if (entry.key != 0) {
            action->setShortcut(QKeySequence(Qt::CTRL | static_cast<Qt::Key>(entry.key)));
            action->setShortcutVisibleInContextMenu(true);
        }
        if (!entry.submenu.empty()) {
            auto* submenu = new QMenu(&menu);
            addEntries(*submenu, entry.submenu, colours);
            action->setMenu(submenu);
        } else if (entry.action) {
            QObject::connect(action, &QAction::triggered, &menu, entry.action);
        }
    }
}

} // namespace

std::unique_ptr<QMenu> makeMenu(const Menu& entries, QWidget* parent) {
    auto menu = std::make_unique<QMenu>(parent);
    const QPalette palette = menu->palette();
    addEntries(*menu, entries,
               {palette.color(QPalette::Text), palette.color(QPalette::HighlightedText)});
    // The shortcuts of actions only work in a window that has them.
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

KeptMenu::KeptMenu() {
    open_.setSingleShot(true);
    QObject::connect(&menu_, &QMenu::aboutToShow, &open_, [this] {
        open_.start(longestOpen);
        if (onOpen)
            onOpen();
    });
    // In a later turn, since the chosen entry is still to be told.
    const auto close = [this] { open_.start(0); };
    QObject::connect(&menu_, &QMenu::aboutToHide, &open_, close);
    QObject::connect(&menu_, &QMenu::triggered, &open_, close);
    QObject::connect(&open_, &QTimer::timeout, &open_, [this] {
        if (isOutdated_)
            rebuild();
    });
}

void KeptMenu::setEntries(const Menu& entries) {
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
        const MenuEntry& entry = entries_.at(static_cast<std::size_t>(line));
        if (!entry.isSeparator())
            update(*actions[line], entry);
    }
}

void KeptMenu::rebuild() {
    isOutdated_ = false;
    menu_.clear();
    addEntries(menu_, entries_, anyMenu);
}

} // namespace velmorquit
