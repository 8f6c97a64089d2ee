#pragma once

#include "Loop/MainLoop.h"
#include "Platform/DesktopFace.h"
#include "Theme/Shadow.h"

#include <QPropertyAnimation>
#include <QWidget>

#include <functional>

namespace velmorquit {

/// A frameless window above all others that shows one widget and grabs neither pointer nor
/// keyboard. With compositing it fades, and has a shadow that lets the pointer through to whatever
/// lies below; otherwise it is cut out.
///
/// Places on the screen are in the toolkit's coordinates.
class FloatingWindow : public QWidget {
public:
    struct Style {
        double cornerRadius = 0;
        Shadow shadow;
        int shadowRoom = 0; ///< around its content
    };
    enum class Manner {
        wanted,   ///< the window manager may give it the keyboard, as any new window
        unbidden, ///< the keyboard stays where it is
    };

    /// The references must outlive it.
    FloatingWindow(MainLoop& loop, const DesktopFace& face, const Style& style);

    /// Sets the widget to show, which becomes its child.
    void setContent(QWidget& content);

    /// Puts the content's upper left corner there, with the window around the content in its
    /// present size.
    void place(const QPoint& corner);

    /// Shows it, even while it fades out. It must have been placed.
    void appear(Manner manner);
    /// Hides it. Until it is gone it still covers the windows below.
    void vanish();

    /// While this is on, all pointer input in it goes to the windows below.
    void letPressesThrough(bool isOn);

    /// Gives it the keyboard, whichever window has it now.
    void takeKeyboard();

    /// From `appear` to `vanish`.
    [[nodiscard]] bool isShown() const { return isShown_; }
    /// Whether it has been drawn since it appeared.
    [[nodiscard]] bool isDrawn() const { return isShown_ && isDrawn_; }

    /// The place of its content on the screen.
    [[nodiscard]] QRect contentOnScreen() const { return content_->geometry().translated(pos()); }

    /// It has been drawn: from now on the window manager knows it and can give it the keyboard.
    /// Called once per appearance, in a later turn.
    std::function<void()> onDrawn;
    /// Another window has come to the front.
    std::function<void()> onLeave;
    /// The user wants to close it: by Escape, or by the keys that close a window.
    std::function<void()> onDismiss;
    /// The screens have changed while it is shown.
    std::function<void()> onOtherScreens;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void noteDrawn();
    void cutOut();
    void limitInput();
    void fade(double from, double to);

    MainLoop& loop_;
    DesktopFace face_;
    Style style_;
    QWidget* content_ = nullptr;
    QPoint corner_;
    QPropertyAnimation fade_;
    bool isShown_ = false;
    bool isDrawn_ = false;
    bool letsPressesThrough_ = false;
    Handle drawn_;
    Handle compositing_;
    Handle screens_;
};

} // namespace velmorquit
