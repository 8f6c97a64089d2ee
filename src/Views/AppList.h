#pragma once

#include "Services/QuitController/QuitController.h"
#include "Theme/GlassCard.h"

#include <map>
#include <memory>

namespace velmorquit {

class AppRow;
class Label;
class ThinScrollArea;

/// The open applications, each of which can be excluded with a click or quit by itself.
class AppList : public GlassCard {
public:
    AppList(QuitController& controller, const Formats& formats, QWidget* parent = nullptr);

    void render();

    /// Height of the rows' part when there are many, in points.
    static constexpr int mostHeight = 230;
    /// The one of three rows: it never has less, if there are as many.
    [[nodiscard]] static int leastHeight();
    /// Lets the rows have at most that much; within the two above.
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
