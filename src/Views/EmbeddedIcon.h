#pragma once

#include <QIcon>
#include <QSystemTrayIcon>
#include <QWidget>

#include <functional>

namespace velmorquit {

class TrayHosts;

/// The icon as a window of the program's own, for an embedding tray. Qt's own icon could be that
/// too, but only in a process whose first icon was of that kind.
class EmbeddedIcon : public QWidget {
public:
    /// Asks the present tray to embed it.
    explicit EmbeddedIcon(const TrayHosts& hosts);

    void setIcon(const QIcon& icon);

    /// Its place on the screen; at the origin until it is embedded.
    [[nodiscard]] QRect place() const;

    /// Called when a pointer button is pressed on it.
    std::function<void(QSystemTrayIcon::ActivationReason)> onPress;

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void tell(QSystemTrayIcon::ActivationReason reason) const;

    QIcon icon_;
};

} // namespace velmorquit
