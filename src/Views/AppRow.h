#pragma once

#include "Services/QuitController/OpenApp.h"
#include "Theme/Aimed.h"

#include <QCheckBox>
#include <QPixmap>

#include <functional>
#include <memory>

namespace velmorquit {

class Formats;

/// One open application in the list: checked means that a run asks it to quit. A row under the
/// pointer or with the keyboard has a button to quit this application alone.
class AppRow : public Aimed<QCheckBox> {
public:
    AppRow(const Formats& formats, QWidget* parent);

    void render(const OpenApp& app, bool isExcluded);
    [[nodiscard]] const OpenApp& app() const { return *app_; }

    void setHovering(bool isHovering);
    [[nodiscard]] bool isHovering() const { return isHovering_; }

    [[nodiscard]] static int rowHeight();
    [[nodiscard]] QSize sizeHint() const override { return {0, rowHeight()}; }
    /// Its last widget in keyboard order.
    [[nodiscard]] QWidget* lastControl() { return quitButton_ ? quitButton_ : this; }
    /// Puts it after `previous` in keyboard order.
    void follow(QWidget* previous);

    std::function<void(const OpenApp&)> onToggle;
    std::function<void(const OpenApp&)> onQuit;

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;
    void focusInEvent(QFocusEvent* event) override;
    void focusOutEvent(QFocusEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    [[nodiscard]] bool hitButton(const QPoint& position) const override;

private:
    void updateQuitButton();
    void makeQuitButton();
    void placeQuitButton();
    [[nodiscard]] bool offersQuit() const;
    void paintTexts(QPainter& painter, double left) const;

    const Formats& formats_;
    std::unique_ptr<OpenApp> app_;
    bool isExcluded_ = false;
    bool isHovering_ = false;
    QPixmap icon_;
    double iconScale_ = 0;
    QWidget* quitButton_ = nullptr;
};

} // namespace velmorquit
