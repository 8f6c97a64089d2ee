#pragma once

#include "Services/QuitController/QuitController.h"
#include "Theme/GlassCard.h"

#include <map>
#include <memory>

namespace velmorquit {

class AppRow;
class Label;
class ThinScrollArea;

/// The open applications, each of which can be excluded by a click or asked to quit.
class AppList : public GlassCard {
public:
    AppList(QuitController& controller, const Formats& formats, QWidget* parent = nullptr);

    void render();

    /// Height of the row area with many rows, in points.
    static constexpr int mostHeight = 230;
    /// Height of three rows, the least if there are that many.
    [[nodiscard]] static int leastHeight();
    /// Limits the height of the row area, within these two bounds.
    void setRoom(int height);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void layOut();
    void updateHover();
    [[nodiscard]] bool isAimedAt() const;
    void keepPlaces(std::vector<ProcessId>& order) const;
    static void quitOne(AppRow& row, const OpenApp& app);
    AppRow& rowOf(ProcessId id);
    [[nodiscard]] int contentHeight() const;

    QuitController& controller_;
    const Formats& formats_;
    Label* empty_;
    ThinScrollArea* area_;
    QWidget* rows_;
    std::map<ProcessId, AppRow*> rowOf_;
    std::vector<ProcessId> order_;
    int room_ = mostHeight;
};

} // namespace velmorquit
