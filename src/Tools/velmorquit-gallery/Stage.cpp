#include "Stage.h"

#include "DemoApps.h"
#include "Services/MenuBar/QuickMenu.h"
#include "Services/Panel/SettingsMenu.h"
#include "Views/MenuView.h"
#include "Views/PanelView.h"

#include <QAbstractButton>
#include <QApplication>
#include <QCursor>
#include <QPainter>
#include <QWidget>

#include <algorithm>
#include <set>
#include <stdexcept>
#include <utility>

namespace velmorquit {
namespace {

constexpr double gibibyte = 1024.0 * 1024 * 1024;
constexpr int margin = 48;

/// The open windows, popups after their owners.
std::vector<QWidget*> openWindows() {
    std::vector<QWidget*> windows;
    for (QWidget* window : QApplication::topLevelWidgets()) {
        if (window->isVisible())
            windows.push_back(window);
    }
    std::ranges::stable_sort(
        windows, {}, [](const QWidget* window) { return window->windowType() == Qt::Popup; });
    return windows;
}

} // namespace

Stage::Stage(const Setting& setting) : setting_(setting), font_(QApplication::font()) {
    const bool isItalian = setting.language == Language::italian;
    desktop.kernel.total = static_cast<std::uint64_t>(16 * gibibyte);
    desktop.kernel.model = isItalian ? "Portatile da 14″" : "14″ laptop";
    desktop.kernel.brand = "AMD Ryzen 7 7840U w/ Radeon Graphics";
    useMemory(11.24);
    // In the evening, with some time left until the scheduled hour.
    desktop.loop.moveWallClock(12h + 36min);
    desktop.backupTool.earlierBackup = desktop.loop.now() - 2h;
    DemoApps::install(desktop);
    // Moving parts would be elsewhere every time.
    face.appearance.motionReduced = true;
    const ScreenRect screen = StageScreens::area(setting.screen, setting.scale);
    face.screens.set({{screen, screen}});
    QCursor::setPos(screen.x, screen.y + screen.height - 1);
}

Stage::~Stage() {
    popover_.reset();
    window_.reset();
    QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QApplication::setFont(font_);
}

void Stage::open(const std::vector<std::string>& names) {
    static const std::vector<std::string> usual{"Wayfarer", "Workshop", "Palette", "Melody",
                                                "Ledger",   "Archive",  "Postbox", "Planner"};
    DemoApps::open(desktop, language(), names.empty() ? usual : names);
}

void Stage::exclude(const std::vector<std::string>& names) {
    std::set<std::string> keys;
    for (const std::string& name : names)
        keys.insert(DemoApps::key(name));
    settings.excludedApps.store(std::move(keys));
}

void Stage::rememberClosed(const std::vector<std::string>& names) {
    settings.lastSession.store(DemoApps::saved(language(), names));
    settings.lastSessionDate.store(desktop.loop.now() - 3h);
}

void Stage::useMemory(double gibibytes) {
    constexpr double pageSize = 4096;
    MemoryPages pages;
    pages.pageSize = static_cast<std::uint64_t>(pageSize);
    pages.internal = static_cast<std::uint64_t>(gibibytes * gibibyte / pageSize);
    desktop.kernel.pages = pages;
}

void Stage::enlargeType() {
    QFont larger = font_;
    larger.setPointSizeF(1.5 * 11);
    QApplication::setFont(larger);
}

QuitController& Stage::startUsually() {
    desktop.backupTool.configure();
    open();
    exclude({"Melody", "Archive"});
    return start();
}

QuitController& Stage::start() {
    settings.refresh();
    controller_ = std::make_unique<QuitController>(desktop.ports(setting_.formats), settings);
    settle();
    return *controller_;
}

void Stage::openPanel() {
    controller_->startLiveUpdates();
    const auto makePanel = [this] {
        return std::make_unique<PanelView>(*controller_, updater, desktop.ports(setting_.formats),
                                           [this] { return settingsMenu(settings, updater, {}); });
    };
    popover_ = std::make_unique<PanelPopover>(
        PanelPopover::Surroundings{desktop.loop, face.ports(), looks_}, makePanel,
        [] { return true; });
    const ScreenRect screen = StageScreens::area(setting_.screen, setting_.scale);
    constexpr int side = 24;
    popover_->show(ScreenRect{screen.x + screen.width / 2, screen.y, side, side});
    settle();
}

QPoint Stage::middle() const {
    const ScreenRect screen = StageScreens::area(setting_.screen, setting_.scale);
    return {screen.x + screen.width / 3, screen.y + screen.height / 4};
}

void Stage::openQuickMenu() {
    auto menu =
        makeMenu(quickMenu(*controller_, desktop.loginWindow, updater, setting_.formats, {}));
    menu->popup(middle());
    menu->setActiveAction(menu->actions().first());
    window_ = std::move(menu);
    settle();
}

void Stage::askFor(const ActionRequest& request) {
    actions_ = std::make_unique<ActionRunner>(desktop.loop, desktop.kernel, setting_.formats);
    actions_->setController(controller_.get());
    actions_->perform(
        request,
        [this](const std::string& question, const std::string& button,
               std::function<void(bool)> answer) {
            dialog_.ask(question, button, std::move(answer));
        },
        [](const ActionAnswer&) {});
    settle();
    for (QWidget* window : openWindows())
        window->move(middle());
    settle();
}

void Stage::show(std::unique_ptr<QWidget> window) {
    window_ = std::move(window);
    window_->move(middle());
    window_->show();
    settle();
}

void Stage::advance(Duration time) {
    desktop.advance(time);
    settle();
}

// A change is told in a turn of the desktop's loop, and drawn in one of the toolkit's.
void Stage::settle() {
    for (int turn = 0; turn < 3; ++turn) {
        desktop.loop.settle();
        QApplication::processEvents();
        QApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }
}

QWidget& Stage::widget(const char* name) const {
    for (QWidget* window : openWindows()) {
        if (auto* found = window->findChild<QWidget*>(QLatin1String(name)))
            return *found;
    }
    throw std::out_of_range(name);
}

void Stage::pointAt(const QWidget& widget) {
    QCursor::setPos(widget.mapToGlobal(widget.rect().center()));
    settle();
}

void Stage::click(const char* name) {
    if (auto* button = qobject_cast<QAbstractButton*>(&widget(name)))
        button->click();
    settle();
}

QImage Stage::photograph() const {
    const std::vector<QWidget*> windows = openWindows();
    QRect area;
    for (const QWidget* window : windows) {
        // Blended windows include the space for their shadows.
        const bool isPlain =
            !window->testAttribute(Qt::WA_TranslucentBackground) || !face.windows.isCompositing();
        const int more = isPlain ? margin : 0;
        area |= window->geometry().adjusted(-more, -more, more, more);
    }
    QImage image(area.size() * setting_.scale, QImage::Format_RGB32);
    image.setDevicePixelRatio(setting_.scale);
    image.fill(QColor(28, 31, 38));
    QPainter painter(&image);
    for (QWidget* window : windows)
        window->render(&painter, window->pos() - area.topLeft(), {},
                       QWidget::DrawWindowBackground | QWidget::DrawChildren);
    return image;
}

} // namespace velmorquit
