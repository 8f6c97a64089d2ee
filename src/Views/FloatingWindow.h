#pragma once

#include "Loop/MainLoop.h"
#include "Platform/DesktopFace.h"
#include "Theme/Shadow.h"

#include <QPropertyAnimation>
#include <QWidget>

#include <functional>

namespace velmorquit {

/// A window without a frame above all others, which shows one widget and grabs neither pointer nor
/// keyboard. Where a compositor blends windows it fades, and has a shadow through which the pointer
/// reaches what lies below; elsewhere it is cut out.
///
/// Places on the screen are in the toolkit's coordinates.
class FloatingWindow : public QWidget {
public:
    struct Style {
        double cornerRadius = 0;
        Shadow shadow;
        int shadowRoom = 0; ///< around what it shows
    };
    enum class Manner {
        wanted,   ///< the window manager gives it the keyboard, if it does so with new windows
        unbidden, ///< the keyboard stays where it is
    };

    /// What it is handed outlives it.
    FloatingWindow(MainLoop& loop, const DesktopFace& face, const Style& style);

    /// Has it show that widget, which becomes its child.
    void setContent(QWidget& content);

    /// Puts the content's upper left corner there, and itself around the content, whatever size
    /// that has by now.
    void place(const QPoint& corner);

    /// Comes to the screen, also while it fades out; it has been placed.
    void appear(Manner manner);
    /// Goes from the screen. Until it is gone it still covers what lies below.
    void vanish();

    /// While this is on, all that the pointer does in it goes to the windows below.
    void letPressesThrough(bool isOn);

    /// Gives it the keyboard, whichever window has it now.
    void takeKeyboard();

    /// From `appear` to `vanish`.
    [[nodiscard]] bool isShown() const { return isShown_; }
    /// Whether it has been drawn since it appeared.
    [[nodiscard]] bool isDrawn() const { return isShown_ && isDrawn_; }

    /// Where on the screen its content is.
    [[nodiscard]] QRect contentOnScreen() const { return content_->geometry().translated(pos()); }

    /// It has been drawn: from now on the window manager has it among its windows and can give it
    /// the keyboard. Once each time that it appears, in a later turn.
    std::function<void()> onDrawn;
    /// Another window has come to the front.
    std::function<void()> onLeave;
    /// The user wants it to go: Escape, or the keys that close a window.
    std::function<void()> onDismiss;
    /// There are other screens than before, while it is shown.
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
