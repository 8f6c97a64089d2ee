#pragma once

#include "Loop/MainLoop.h"
#include "Loop/Subscribers.h"
#include "Platform/Screens.h"

#include <QObject>

class QScreen;

namespace velmorquit {

/// The toolkit's screens; to be created when there is an application object.
class QtScreens final : public QObject, public Screens {
public:
    explicit QtScreens(MainLoop& loop);

    [[nodiscard]] std::vector<Screen> all() const override;
    [[nodiscard]] ScreenPoint pointer() const override;
    [[nodiscard]] Handle observe(std::function<void()> changed) const override {
        return observers_.add(std::move(changed));
    }

private:
    void watch(const QScreen& screen);
    void tell() { observers_.tellLater(loop_); }

    MainLoop& loop_;
    mutable Subscribers observers_;
};

} // namespace velmorquit
