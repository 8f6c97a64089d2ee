#pragma once

#include "Loop/Handle.h"
#include "Platform/DesktopFace.h"
#include "Services/StatusItem.h"
#include "Views/EmbeddedIcon.h"
#include "Views/MenuView.h"

#include <QMenu>
#include <QSystemTrayIcon>
#include <QTimer>

#include <memory>
#include <optional>

namespace velmorquit {

/// The program's icon in the tray, also while hosts of either kind replace each other. Qt decides
/// with its first icon for which kind of host it makes them, and stays with that: so it is used for
/// notifiers alone.
class TrayItem final : public StatusItem {
public:
    explicit TrayItem(const DesktopFace& face);
    TrayItem(const TrayItem&) = delete;
    TrayItem& operator=(const TrayItem&) = delete;
    ~TrayItem() override;

    [[nodiscard]] std::optional<ScreenRect> frame() const override;
    void popUp(const Menu& menu) override;
    void keepMenu(const Menu& menu) override;

private:
    void remake();
    void hear(QSystemTrayIcon::ActivationReason reason);
    void noteClick();
    void noteMenu();
    void closeMenu();

    [[nodiscard]] QPoint pointer() const;
    [[nodiscard]] QRect geometry() const;
    [[nodiscard]] QRect ground() const;
    void lookLater();
    void look();
    void paint();
    [[nodiscard]] bool isPanelDark() const;

    DesktopFace face_;
    /// One of the two while there is a host.
    std::unique_ptr<QSystemTrayIcon> icon_;
    std::unique_ptr<EmbeddedIcon> embedded_;
    Menu entries_;
    /// Only for hosts that draw it.
    std::unique_ptr<KeptMenu> kept_;
    std::unique_ptr<QMenu> open_;
    std::optional<QPoint> clickedAt_;
    /// As seen behind the icon; none before it was seen there.
    std::optional<bool> isGroundDark_;
    QTimer looks_;
    Handle hostChanges_;
    Handle appearanceChanges_;
};

} // namespace velmorquit
