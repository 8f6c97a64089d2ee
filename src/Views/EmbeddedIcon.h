#pragma once

#include <QIcon>
#include <QSystemTrayIcon>
#include <QWidget>

#include <functional>

namespace velmorquit {

class TrayHosts;

/// The icon as a window of the program's own, for a host that takes windows in. Qt's own icon would
/// be that too, but only in a process whose first icon was of that kind.
class EmbeddedIcon : public QWidget {
public:
    /// Asks the host that there is to take it in.
    explicit EmbeddedIcon(const TrayHosts& hosts);

    void setIcon(const QIcon& icon);

    /// Where it is on the screen, at the origin before it was taken in.
    [[nodiscard]] QRect place() const;

    /// Called when a pointer button goes down on it.
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
